#include "companion/data_set/cursor.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace data_set_file {

File::File(std::string name) : path(std::move(name)) {
    const int status = byte_file::open(path, system_calls::OpenMode::read, bytes, size);
    if (status != io_layer::ok)
        throw std::runtime_error(path + ": " + error::ioStatErrorMsg(status));
}

File::~File() {
    byte_file::close(bytes);
}

void fail(const File& file, std::int64_t position, const std::string& fault) {
    throw std::runtime_error(file.path + ": byte " + std::to_string(position) + ": " + fault);
}

void readAt(const File& file, std::int64_t position, void* into, std::int64_t bytes) {
    if (byte_file::readAt(file.bytes, position, into, bytes) != io_layer::ok)
        fail(file, position, "cannot be read");
}

void require(const Cursor& cursor, bool condition, const char* fault) {
    if (!condition) fail(cursor.file, cursor.position, fault);
}

void takeBytes(Cursor& cursor, void* into, std::int64_t bytes) {
    require(cursor, bytes <= cursor.file.size - cursor.position, "the file ends");
    char* target = static_cast<char*>(into);
    while (bytes > 0) {
        const std::int64_t offset = cursor.position - cursor.blockAt;
        const auto inBlock = static_cast<std::int64_t>(cursor.block.size());
        if (offset < 0 || offset >= inBlock) {
            cursor.blockAt = cursor.position;
            cursor.block.resize(static_cast<std::size_t>(
                std::min(cursor.blockBytes, cursor.file.size - cursor.position)));
            readAt(cursor.file, cursor.position, cursor.block.data(),
                   static_cast<std::int64_t>(cursor.block.size()));
            continue;
        }
        const std::int64_t piece = std::min(bytes, inBlock - offset);
        std::memcpy(target, cursor.block.data() + offset, static_cast<std::size_t>(piece));
        target += piece;
        cursor.position += piece;
        bytes -= piece;
    }
}

std::int64_t skip(Cursor& cursor, std::int64_t count, std::int64_t bytesEach) {
    require(cursor, count <= (cursor.file.size - cursor.position) / bytesEach,
            "the file has fewer values");
    return std::exchange(cursor.position, cursor.position + count * bytesEach);
}

std::int32_t takeBetween(Cursor& cursor, std::int64_t least, std::int64_t greatest,
                         const char* fault) {
    const std::int64_t at = cursor.position;
    const auto value = take(cursor);
    if (value < least || value > greatest) fail(cursor.file, at, fault);
    return value;
}

std::string takeText(Cursor& cursor) {
    std::string text;
    while (const std::int32_t c = takeBetween(cursor, 0, 255, "not a character"))
        text += static_cast<char>(c);
    return text;
}

} // namespace data_set_file
