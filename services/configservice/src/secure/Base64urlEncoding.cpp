#include "Base64urlEncoding.h"

namespace zel {

namespace {

constexpr std::string_view urlAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

} // namespace

const Base64urlEncoding& Base64urlEncoding::instance() {
    static const Base64urlEncoding encoding;
    return encoding;
}

std::string_view Base64urlEncoding::getAlphabet() const {
    return urlAlphabet;
}

const Encoding::DecodingTable& Base64urlEncoding::getDecodingTable() const {
    static constexpr DecodingTable table = makeDecodingTable(urlAlphabet);
    return table;
}

std::string_view Base64urlEncoding::getEncodingPadding() const {
    return "%3D";
}

std::string_view Base64urlEncoding::getDecodingPadding() const {
    return "=";
}

bool Base64urlEncoding::isForUrls() const {
    return true;
}

} // namespace zel
