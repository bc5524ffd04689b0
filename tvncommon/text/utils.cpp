#include "tvncommon/text/utils.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/system_calls.hpp"
#include "tvncommon/text/StringHelpers.hpp"

#include <cstdlib>

namespace utils {

int numDigits(std::int32_t value) {
    int count = 1;
    for (; value > 9; value /= 10) ++count;
    return count;
}

std::string zeroPaddedIntString(std::int32_t value, int width) {
    const std::string w = std::to_string(width);
    int iostat = 0;
    std::string text = StringHelpers::toString_i4(value, "(I" + w + "." + w + ")", &iostat);
    if (iostat != 0) error::fatalError("Zero padded integer string conversion failed.");
    return text;
}

std::string timestampUTC() {
    const system_calls::LocalTime t = system_calls::localTime();
    const auto two = [](int value) { return zeroPaddedIntString(value, 2); };
    const std::string text = zeroPaddedIntString(t.year, 4) + "-" + two(t.month) + "-" +
                             two(t.day) + "T" + two(t.hour) + ":" + two(t.minute) + ":" +
                             two(t.second);
    if (t.offsetMinutes == 0) return text + "Z";
    const int offset = std::abs(t.offsetMinutes);
    return text + (t.offsetMinutes < 0 ? "-" : "+") + two(offset / 60) + ":" + two(offset % 60);
}

} // namespace utils
