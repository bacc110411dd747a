#include "OperationRecord.h"

#include "LogFile.h"

#include <cstdlib>

namespace attack {

namespace {

std::string fileOfRecord() {
    const char* const value = std::getenv("LUMORA_FAULT_RECORD");
    return value ? value : "";
}

} // namespace

OperationRecord& OperationRecord::get() {
    static OperationRecord* const record = new OperationRecord;
    return *record;
}

OperationRecord::OperationRecord() : file(fileOfRecord()) {}

void OperationRecord::add(std::initializer_list<std::string_view> words) const {
    std::string line;
    for (const std::string_view word : words) {
        line.append(line.empty() ? "" : "\t").append(word);
    }
    appendToLog(file, line + "\n");
}

std::string OperationRecord::toHex(const void* bytes, std::size_t size) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * size);
    for (const auto* byte = static_cast<const unsigned char*>(bytes); size > 0; --size, ++byte) {
        text.push_back(digits[*byte >> 4]);
        text.push_back(digits[*byte & 15]);
    }
    return text;
}

} // namespace attack
