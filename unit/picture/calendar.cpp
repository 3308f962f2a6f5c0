#include "unit/picture/calendar.h"

#include <cstdio>

namespace unit {
namespace {

using namespace std::chrono;

constexpr sys_seconds kPowerOn = sys_days(2014y / September / 1) + 18h + 30min;

sys_seconds At(microseconds since_power_on) {
    return kPowerOn + floor<seconds>(since_power_on);
}

}  // namespace

std::string CarDate(microseconds since_power_on) {
    const year_month_day date(floor<days>(At(since_power_on)));
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return text;
}

std::string CarTime(microseconds since_power_on) {
    const sys_seconds now = At(since_power_on);
    const hh_mm_ss time(now - floor<days>(now));
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text;
}

}  // namespace unit
