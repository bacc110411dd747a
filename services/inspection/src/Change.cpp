#include "Change.h"

#include "Json.h"

#include <ConfigCatalogue.h>

#include <iomanip>
#include <sstream>

namespace inspection {

using KyrCoreUtils::toString;

namespace {

/// Returns the time in ISO 8601 with milliseconds, in UTC.
std::string toText(std::chrono::system_clock::time_point moment) {
    using namespace std::chrono;
    const auto today = floor<days>(moment);
    const year_month_day date(today);
    const hh_mm_ss time(floor<milliseconds>(moment - today));
    std::ostringstream text;
    text << std::setfill('0') << static_cast<int>(date.year()) << '-' << std::setw(2)
         << static_cast<unsigned>(date.month()) << '-' << std::setw(2) << static_cast<unsigned>(date.day()) << 'T'
         << std::setw(2) << time.hours().count() << ':' << std::setw(2) << time.minutes().count() << ':' << std::setw(2)
         << time.seconds().count() << '.' << std::setw(3) << time.subseconds().count() << 'Z';
    return text.str();
}

/// Calls `use` for each property that differs.
template <typename Use>
void forEachProperty(const Change& change, Use use) {
    const auto& [value, originalValue, isOverridden, isDefined, valueStore, originalStore] = change.before;
    const auto compare = [&](const char* property, const auto& before, const auto& after, bool secret) {
        if (before != after) {
            use(property, before, after, secret);
        }
    };
    compare("Value", value, change.after.value, change.secret);
    compare("OriginalValue", originalValue, change.after.originalValue, change.secret);
    compare("isOverridden", isOverridden, change.after.isOverridden, false);
    compare("isDefined", isDefined, change.after.isDefined, false);
    compare("ValueStoreName", valueStore, change.after.valueStoreName, false);
    compare("OriginalValueStoreName", originalStore, change.after.originalValueStoreName, false);
}

std::string toText(const std::wstring& value) {
    return toString(value);
}

std::string toText(bool value) {
    return value ? "true" : "false";
}

} // namespace

std::size_t Change::countEvents() const {
    std::size_t count = 0;
    forEachProperty(*this, [&](const char*, const auto&, const auto&, bool) { ++count; });
    return count;
}

std::string Change::toLines(bool showSecrets) const {
    std::string lines;
    const Json begin{
        {"type", "notification"}, {"time", toText(time)}, {"key", toString(ZelUnified::ConfigKeys::spellKey(key))}};
    forEachProperty(*this, [&](const char* property, const auto& was, const auto& is, bool isSecret) {
        const auto show = [&](const auto& text) {
            return isSecret && !showSecrets ? toString(ZelUnified::ConfigKeys::valueHidden) : toText(text);
        };
        auto event = begin;
        event["property"] = property;
        event["old"] = show(was);
        event["new"] = show(is);
        event["store"] = toString(after.valueStoreName);
        lines += toLine(event);
    });
    return lines;
}

std::string makeLostLine(std::size_t count) {
    return toLine({{"type", "lost"}, {"count", count}});
}

} // namespace inspection
