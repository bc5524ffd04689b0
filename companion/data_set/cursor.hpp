#pragma once

#include "companion/data_set/data_set_file.hpp"

#include <cstring>
#include <string>
#include <vector>

// Reads the parts of a header in sequence. All parts consist of 32-bit words.
namespace data_set_file {

[[noreturn]] void fail(const File& file, std::int64_t position, const std::string& fault);

// Reads bytes that are inside the file.
void readAt(const File& file, std::int64_t position, void* into, std::int64_t bytes);

struct Cursor {
    File& file;
    std::int64_t position = 0;       // of what is taken next
    std::int64_t blockBytes = 65536; // read at once
    std::vector<char> block{};
    std::int64_t blockAt = 0; // position of the block
};

// Fails, at the position of the cursor, unless the condition is true.
void require(const Cursor& cursor, bool condition, const char* fault);

// Take bytes, a number, and an array. They fail if the file ends before.
void takeBytes(Cursor& cursor, void* into, std::int64_t bytes);

// Moves the cursor to the end of an array without reading it. Returns the position of the array.
std::int64_t skip(Cursor& cursor, std::int64_t count, std::int64_t bytesEach);

template<class T = std::int32_t>
T take(Cursor& cursor) {
    T value{};
    takeBytes(cursor, &value, sizeof value);
    return value;
}

template<class T>
std::vector<T> takeMany(Cursor& cursor, std::int64_t count) {
    require(cursor,
            count <= (cursor.file.size - cursor.position) / static_cast<std::int64_t>(sizeof(T)),
            "the file has fewer values");
    std::vector<T> values(static_cast<std::size_t>(count));
    takeBytes(cursor, values.data(), count * static_cast<std::int64_t>(sizeof(T)));
    return values;
}

// Takes an integer between two bounds.
std::int32_t takeBetween(Cursor& cursor, std::int64_t least, std::int64_t greatest,
                         const char* fault);

// Takes a text, an integer for each character and a 0.
std::string takeText(Cursor& cursor);

} // namespace data_set_file
