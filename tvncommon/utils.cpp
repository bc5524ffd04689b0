#include "tvncommon/utils.hpp"

#include "tvncommon/StringHelpers.hpp"
#include "tvncommon/error.hpp"

#include <array>
#include <time.h>

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
    const time_t now = time(nullptr);
    tm local{};
    tzset();
    localtime_r(&now, &local);
    std::array<char, 64> buffer{};
    std::string text(buffer.data(), strftime(buffer.data(), buffer.size(), "%FT%T", &local));
    std::string zone(buffer.data(), strftime(buffer.data(), buffer.size(), "%z", &local));
    if (zone.empty() || zone.ends_with("0000")) return text + "Z";
    return text + zone.insert(zone.size() - 2, ":");
}

} // namespace utils
