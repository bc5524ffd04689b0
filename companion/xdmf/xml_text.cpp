#include "companion/xdmf/xml_text.hpp"

#include "companion/screen/screen.hpp"

#include <cstdint>
#include <stdexcept>

namespace xdmf {

namespace {

unsigned char byteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// Number of bytes of the character that begins here, 0 if it is not UTF-8 or not in XML. The least
// number of a length excludes longer forms of the same character.
std::size_t characterBytes(std::string_view text, std::size_t at) {
    struct Length {
        unsigned char mask, lead;
        std::size_t bytes;
        std::uint32_t least;
    };
    constexpr Length lengths[] = {{0x80, 0x00, 1, 0},
                                  {0xe0, 0xc0, 2, 0x80},
                                  {0xf0, 0xe0, 3, 0x800},
                                  {0xf8, 0xf0, 4, 0x10000}};
    const unsigned char first = byteAt(text, at);
    for (const Length& length : lengths) {
        if ((first & length.mask) != length.lead) continue;
        std::uint32_t number = first & static_cast<unsigned char>(~length.mask);
        for (std::size_t i = 1; i < length.bytes; ++i) {
            const unsigned char next = byteAt(text, at + i);
            if ((next & 0xc0U) != 0x80U) return 0;
            number = number << 6U | (next & 0x3fU);
        }
        const bool surrogate = number >= 0xd800 && number <= 0xdfff;
        const bool excluded = number == 0xfffe || number == 0xffff || number > 0x10ffff;
        return number < length.least || surrogate || excluded ? 0 : length.bytes;
    }
    return 0;
}

std::string utf8OfLatin1(std::string_view text) {
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            out += c;
        } else {
            out += static_cast<char>(0xc0U | byte >> 6U);
            out += static_cast<char>(0x80U | (byte & 0x3fU));
        }
    }
    return out;
}

std::string escapeMarkup(std::string_view text) {
    std::string out;
    for (const char c : text) switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    return out;
}

} // namespace

bool isUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t bytes = characterBytes(text, at);
        if (bytes == 0) return false;
        at += bytes;
    }
    return true;
}

std::string xmlName(std::string_view name) {
    return escapeMarkup(screen::printable(isUtf8(name) ? std::string(name) : utf8OfLatin1(name)));
}

std::string xmlFileName(const std::string& name) {
    if (!isUtf8(name) || screen::printable(name) != name || name.starts_with(' ') ||
        name.ends_with(' '))
        throw std::runtime_error(name + ": an index cannot contain this file name");
    return escapeMarkup(name);
}

} // namespace xdmf
