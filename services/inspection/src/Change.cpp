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

} // namespace

std::string Change::toLine(bool showSecrets) const {
    const auto shown = [&](const std::wstring& value) {
        return toString(secret && !showSecrets ? std::wstring(ZelUnified::ConfigKeys::valueHidden) : value);
    };
    return inspection::toLine({{"type", "notification"},
                               {"time", toText(time)},
                               {"key", toString(ZelUnified::ConfigKeys::spellKey(key))},
                               {"property", property},
                               {"old", shown(oldValue)},
                               {"new", shown(newValue)},
                               {"store", toString(storeName)}});
}

std::string makeLostLine(std::size_t count) {
    return toLine({{"type", "lost"}, {"count", count}});
}

} // namespace inspection
