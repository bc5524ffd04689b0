#pragma once

#include <array>
#include <string_view>

namespace units {

struct System {
    std::string_view name;
    std::string_view length;
    std::string_view time;
    double lengthUnitsPerMetre;
    double secondsPerTimeUnit;
};

// By handle. In the centimeter systems the simulator numbers the day before the hour.
inline constexpr std::array<System, 10> systems{{
    {"kilogram-meter-second", "m", "s", 1, 1},
    {"kilogram-meter-minute", "m", "min", 1, 60},
    {"kilogram-meter-hour", "m", "h", 1, 3600},
    {"kilogram-meter-day", "m", "d", 1, 86400},
    {"kilogram-meter-year", "m", "y", 1, 31536000},
    {"kilogram-centimeter-second", "cm", "s", 100, 1},
    {"kilogram-centimeter-minute", "cm", "min", 100, 60},
    {"kilogram-centimeter-day", "cm", "d", 100, 86400},
    {"kilogram-centimeter-hour", "cm", "h", 100, 3600},
    {"kilogram-centimeter-year", "cm", "y", 100, 31536000},
}};

} // namespace units
