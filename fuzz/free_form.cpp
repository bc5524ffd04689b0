#include "fuzz/support.hpp"

#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/free_form.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <regex>
#include <vector>

// Compares free-form numbers with those of the standard library, and lists on one line with the
// same lists on several lines. The input is a text.
namespace {

using fuzz::require;

// Returns the number in the form of strtod, or an empty text if it is not a valid number.
std::string respelled(const std::string& text) {
    // Each digit can match only one part. Otherwise the time would be quadratic in the length.
    static const std::regex number(
        "([+-]?)(([0-9]+(?:\\.[0-9]*)?|\\.[0-9]+)([eEdD]([+-]?[0-9]+)|"
        "([+-][0-9]+))?|[iI][nN][fF]([iI][nN][iI][tT][yY])?|[nN][aA][nN])");
    std::smatch parts;
    if (!std::regex_match(text, parts, number)) return "";
    if (!parts[3].matched) return text;
    const std::string exponent = parts[5].str() + parts[6].str();
    return parts[1].str() + parts[3].str() + "e" + (exponent.empty() ? "0" : exponent);
}

template<class Real>
void compareReal(const std::string& text, Real (*convert)(const char*, char**)) {
    Real value = 7;
    const int status = free_form::readReal(text, value);
    const std::string spelled = respelled(text);
    const Real expected = convert(spelled.c_str(), nullptr);
    const bool isName = spelled.find_first_of("iInN") != std::string::npos; // Inf or NaN
    const bool good = !spelled.empty() && (isName || std::isfinite(expected));
    require((status == io_layer::ok) == good, "wrong status for " + text);
    if (!good)
        require(value == 7, "value changed by an invalid number: " + text);
    else if (std::isnan(expected))
        require(std::isnan(value), "not NaN: " + text);
    else
        require(value == expected && std::signbit(value) == std::signbit(expected),
                "wrong value of " + text);
}

void compareInteger(const std::string& text) {
    static const std::regex number("[+-]?[0-9]+");
    std::int32_t value = 7;
    const int status = free_form::readInteger(text, value);
    const long long expected = std::strtoll(text.c_str(), nullptr, 10);
    const bool good =
        std::regex_match(text, number) && expected == static_cast<std::int32_t>(expected);
    require((status == io_layer::ok) == good && value == (good ? expected : 7),
            "wrong integer for " + text);
}

int readList(std::string_view text, std::vector<double>& values) {
    const auto nextLine = [&](std::string& line) {
        if (text.empty()) return false;
        line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        return true;
    };
    return free_form::readReals(nextLine, values);
}

// A line feed separates the values of a list like a blank.
void compareLists(std::string text) {
    constexpr double untouched = -123456;
    std::vector<double> several(9, untouched), one = several;
    const int status = readList(text, several);
    std::replace(text.begin(), text.end(), '\n', ' ');
    require(readList(text, one) == status, "different status on one line");
    const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
    require(std::ranges::equal(several, one, {}, bits, bits), "different values on one line");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), std::min<std::size_t>(size, 4096));
    compareLists(text);
    std::string word;
    free_form::readWord(text, word);
    const bool single =
        !text.empty() && text.size() < 400 &&
        text.find_first_of(std::string_view(" \t\r\n,/*\0", 8)) == std::string::npos;
    if (!single) return 0;
    compareReal<double>(text, std::strtod);
    compareReal<float>(text, std::strtof);
    compareInteger(text);
    return 0;
}
