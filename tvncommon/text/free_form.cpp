#include "tvncommon/text/free_form.hpp"

#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <charconv>
#include <limits>

namespace free_form {

using io_layer::endOfFile;
using io_layer::invalidData;
using io_layer::ok;

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view wordEnds = " \t\r\n,";
constexpr std::string_view numberEnds = " \t\r\n,/";
constexpr std::string_view digits = "0123456789";

struct Reader {
    std::string_view rest;     // of the current line
    std::string_view repeated; // the value after a repeat count
    std::uint32_t repeats = 0; // further items with this value
    bool afterValue = false;   // a comma may still follow the last value, also on a later line
};

enum class Token { value, null, slash, atEnd, malformed };

void skipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

// Reads the text of one item from the current line into `text`.
Token nextToken(Reader& reader, std::string_view& text) {
    if (reader.repeats > 0) {
        --reader.repeats;
        text = reader.repeated;
        return text.empty() ? Token::null : Token::value;
    }
    skipBlanks(reader.rest);
    if (reader.afterValue && reader.rest.starts_with(',')) {
        reader.afterValue = false;
        reader.rest.remove_prefix(1);
        skipBlanks(reader.rest);
    }
    if (reader.rest.empty()) return Token::atEnd;
    if (reader.rest.front() == '/') return Token::slash;
    if (reader.rest.front() == ',') {
        reader.rest.remove_prefix(1);
        return Token::null;
    }
    text = reader.rest.substr(0, reader.rest.find_first_of(numberEnds));
    reader.rest.remove_prefix(text.size());
    reader.afterValue = true;

    const std::size_t star = text.find('*');
    if (star == std::string_view::npos) return Token::value;
    std::uint32_t count = 0;
    const char* const countEnd = text.data() + star;
    const auto [end, error] = std::from_chars(text.data(), countEnd, count);
    if (error != std::errc() || end != countEnd || count == 0) return Token::malformed;
    text.remove_prefix(star + 1);
    reader.repeated = text;
    reader.repeats = count - 1;
    return text.empty() ? Token::null : Token::value;
}

bool equalsFolded(std::string_view text, std::string_view lowerCase) {
    return std::equal(
        text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
        [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

// A number's text without its sign.
struct Decimal {
    std::string_view mantissa;
    char exponentLetter = 0;   // 0 for an exponent that begins with its sign
    std::string_view exponent; // with its sign; empty if there is no exponent
};

bool split(std::string_view text, Decimal& number) {
    const auto isDigits = [](std::string_view s) {
        return !s.empty() && s.find_first_not_of(digits) == std::string_view::npos;
    };
    number.mantissa = text.substr(0, text.find_first_not_of("0123456789."));
    if (number.mantissa.find('.') != number.mantissa.rfind('.')) return false;
    text.remove_prefix(number.mantissa.size());
    if (text.empty()) return true;

    const bool hasLetter = std::string_view("eEdD").find(text.front()) != std::string_view::npos;
    if (hasLetter) {
        number.exponentLetter = text.front();
        text.remove_prefix(1);
    }
    number.exponent = text;
    const bool hasSign = text.starts_with('+') || text.starts_with('-');
    return (hasLetter || hasSign) && isDigits(text.substr(hasSign ? 1 : 0));
}

// True if a number out of range is too large, false if it is too small. The power of ten of its
// first digit decides.
bool isTooLarge(const Decimal& number) {
    const std::size_t first = number.mantissa.find_first_not_of("0.");
    if (first == std::string_view::npos) return false;
    const std::size_t point = std::min(number.mantissa.find('.'), number.mantissa.size());
    std::string_view text = number.exponent;
    const bool negative = text.starts_with('-');
    if (text.starts_with('+')) text.remove_prefix(1);
    std::int32_t power = 0;
    if (!text.empty() && std::from_chars(text.data(), text.data() + text.size(), power).ec ==
                             std::errc::result_out_of_range)
        return !negative;
    return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) + power > 0;
}

template<class Real>
int parse(std::string_view text, Real& value) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    Real magnitude = 0;
    Decimal number;
    if (equalsFolded(text, "inf") || equalsFolded(text, "infinity")) {
        magnitude = std::numeric_limits<Real>::infinity();
    } else if (equalsFolded(text, "nan")) {
        magnitude = std::numeric_limits<Real>::quiet_NaN();
    } else if (split(text, number)) {
        std::string respelled;
        if (!number.exponent.empty() && number.exponentLetter != 'e' &&
            number.exponentLetter != 'E') {
            respelled.append(number.mantissa).append("e").append(number.exponent);
            text = respelled;
        }
        const auto [end, error] =
            std::from_chars(text.data(), text.data() + text.size(), magnitude);
        if (error == std::errc::result_out_of_range) {
            if (isTooLarge(number)) return invalidData;
            magnitude = 0;
        } else if (error != std::errc()) {
            return invalidData;
        }
    } else {
        return invalidData;
    }
    value = negative ? -magnitude : magnitude;
    return ok;
}

int parse(std::string_view text, std::int32_t& value) {
    if (text.starts_with("+-")) return invalidData;
    if (text.starts_with('+')) text.remove_prefix(1);
    std::int32_t number = 0;
    const char* const textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), textEnd, number);
    if (error != std::errc() || end != textEnd) return invalidData;
    value = number;
    return ok;
}

template<class Number>
int readOne(std::string_view text, Number& value) {
    Reader reader;
    reader.rest = text;
    std::string_view number;
    switch (nextToken(reader, number)) {
    case Token::value:
        return parse(number, value);
    case Token::atEnd:
        return endOfFile;
    case Token::malformed:
        return invalidData;
    case Token::null:
    case Token::slash:
        break;
    }
    return ok;
}

// Calls `store` with the text of each value that is not missing.
template<class Store>
int readMany(const NextLine& nextLine, std::size_t count, MissingValue missing, Store store) {
    std::string line;
    Reader reader;
    for (std::size_t i = 0; i < count; ++i) {
        std::string_view number;
        Token token = nextToken(reader, number);
        while (token == Token::atEnd) {
            if (!nextLine(line)) return endOfFile;
            reader.rest = line;
            token = nextToken(reader, number);
        }
        const bool isMissing = token == Token::slash || token == Token::null;
        if (token == Token::malformed || (isMissing && missing == MissingValue::refused))
            return invalidData;
        if (token == Token::slash) return ok;
        if (token == Token::null) continue;
        if (const int status = store(i, number); status != ok) return status;
    }
    return ok;
}

} // namespace

int readReal(std::string_view text, double& value) {
    return readOne(text, value);
}
int readReal(std::string_view text, float& value) {
    return readOne(text, value);
}
int readInteger(std::string_view text, std::int32_t& value) {
    return readOne(text, value);
}

int readWord(std::string_view line, std::string& word) {
    skipBlanks(line);
    if (line.empty()) return endOfFile;
    if (line.front() == ',') return ok;
    if (line.front() != '\'' && line.front() != '"') {
        word = line.substr(0, line.find_first_of(wordEnds));
        return ok;
    }
    const char quote = line.front();
    std::string quoted;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == quote && (i + 1 == line.size() || line[++i] != quote)) {
            word = quoted;
            return ok;
        }
        quoted += line[i];
    }
    return invalidData;
}

int readItems(const NextLine& nextLine, std::span<const Item> items, MissingValue missing) {
    return readMany(nextLine, items.size(), missing, [&](std::size_t i, std::string_view number) {
        return std::visit([&](auto* value) { return parse(number, *value); }, items[i]);
    });
}

int readReals(const NextLine& nextLine, std::span<double> values, MissingValue missing) {
    return readMany(nextLine, values.size(), missing, [&](std::size_t i, std::string_view number) {
        return parse(number, values[i]);
    });
}

} // namespace free_form
