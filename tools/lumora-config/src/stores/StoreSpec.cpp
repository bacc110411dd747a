#include "StoreSpec.h"

#include "output/Failure.h"

#include <charconv>
#include <optional>

namespace lumora_config {

namespace {

[[noreturn]] void refuse(std::string_view text, std::string_view form) {
    throw Failure(ExitCode::Usage, "'" + std::string(text) + "' is not of the form " + std::string(form));
}

/// Removes the text after the last colon from `rest` and returns it. Returns nothing if there is no colon.
std::optional<std::string_view> removeLastPart(std::string_view& rest) {
    const auto colon = rest.rfind(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const auto last = rest.substr(colon + 1);
    rest = rest.substr(0, colon);
    return last;
}

std::optional<int> toPriority(std::string_view text) {
    int number = 0;
    const auto end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (text.empty() || error != std::errc{} || stop != end) {
        return std::nullopt;
    }
    return number;
}

} // namespace

StoreSpec StoreSpec::parse(std::string_view text) {
    constexpr std::string_view form = "FILE.xml:NAME:PRIORITY[:cache]";
    std::string_view rest = text;
    auto last = removeLastPart(rest);
    const bool cached = last == "cache";
    if (cached) {
        last = removeLastPart(rest);
    }
    const auto priority = last ? toPriority(*last) : std::nullopt;
    const auto name = removeLastPart(rest);
    if (!priority || !name || name->empty() || rest.empty()) {
        refuse(text, form);
    }
    return {std::string(rest), std::string(*name), *priority, cached};
}

BootstrapSpec BootstrapSpec::parse(std::string_view text) {
    std::string_view rest = text;
    const auto last = removeLastPart(rest);
    const auto priority = last ? toPriority(*last) : std::nullopt;
    if (!priority || rest.empty()) {
        refuse(text, "FILE:PRIORITY");
    }
    return {std::string(rest), *priority};
}

} // namespace lumora_config
