#include "Base64Encoding.h"

namespace zel {

namespace {

constexpr std::string_view standardAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

const Base64Encoding& Base64Encoding::instance() {
    static const Base64Encoding encoding;
    return encoding;
}

std::string_view Base64Encoding::getAlphabet() const {
    return standardAlphabet;
}

const Encoding::DecodingTable& Base64Encoding::getDecodingTable() const {
    static constexpr DecodingTable table = makeDecodingTable(standardAlphabet);
    return table;
}

std::string_view Base64Encoding::getEncodingPadding() const {
    return "=";
}

std::string_view Base64Encoding::getDecodingPadding() const {
    return "=";
}

bool Base64Encoding::isForUrls() const {
    return false;
}

} // namespace zel
