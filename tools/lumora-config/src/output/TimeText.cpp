#include "TimeText.h"

#include <iomanip>
#include <sstream>

namespace lumora_config {

std::string formatTime(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto second = floor<seconds>(time);
    const auto day = floor<days>(second);
    const year_month_day date(day);
    const hh_mm_ss clock(second - day);
    std::ostringstream text;
    text << std::setfill('0') << static_cast<int>(date.year()) << '-' << std::setw(2)
         << static_cast<unsigned>(date.month()) << '-' << std::setw(2) << static_cast<unsigned>(date.day()) << 'T'
         << std::setw(2) << clock.hours().count() << ':' << std::setw(2) << clock.minutes().count() << ':'
         << std::setw(2) << clock.seconds().count() << 'Z';
    return text.str();
}

} // namespace lumora_config
