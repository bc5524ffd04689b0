#include "examples/record_file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace record_file {

namespace {

constexpr std::size_t buffer_size = std::size_t{1} << 20;

void flush(RecordFile& file) {
    errno = 0;
    if (std::fwrite(file.buffer.data(), 1, file.used, file.stream) != file.used)
        write_failed(file.path);
    file.bytes_written += file.used;
    file.used = 0;
}

void buffer_bytes(RecordFile& file, const char* bytes, std::size_t count) {
    while (count > 0) {
        if (file.used == file.buffer.size()) flush(file);
        const std::size_t part = std::min(count, file.buffer.size() - file.used);
        std::memcpy(file.buffer.data() + file.used, bytes, part);
        file.used += part;
        bytes += part;
        count -= part;
    }
}

void buffer_mark(RecordFile& file, std::uint32_t length, bool negative) {
    const auto positive = static_cast<std::int32_t>(length);
    const std::int32_t mark = negative ? -positive : positive;
    char bytes[4];
    std::memcpy(bytes, &mark, 4);
    buffer_bytes(file, bytes, 4);
}

void begin_piece(RecordFile& file) {
    const std::uint64_t length = std::min<std::uint64_t>(file.record_left, file.piece_limit);
    file.piece_length = static_cast<std::uint32_t>(length);
    file.piece_left = file.piece_length;
    file.record_left -= length;
    buffer_mark(file, file.piece_length, file.record_left > 0);
}

void end_piece(RecordFile& file) {
    buffer_mark(file, file.piece_length, file.continues);
    file.continues = true;
    if (file.record_left > 0) begin_piece(file);
}

// A record that got too few or too many bytes is a fault of this program, and the file is useless.
[[noreturn]] void record_length_fault(const RecordFile& file) {
    std::fprintf(stderr, "make_problem: record of wrong length in %s\n", file.path.c_str());
    std::abort();
}

} // namespace

[[noreturn]] void write_failed(const std::string& path) {
    const char* reason = errno != 0 ? std::strerror(errno) : "write error";
    std::fprintf(stderr, "make_problem: cannot write %s: %s\n", path.c_str(), reason);
    std::exit(1);
}

RecordFile create(const std::string& path, std::uint32_t piece_limit) {
    RecordFile file;
    file.path = path;
    file.piece_limit = piece_limit;
    errno = 0;
    file.stream = std::fopen(path.c_str(), "wb");
    if (file.stream == nullptr) write_failed(path);
    // The buffer of the record file is the only one: it goes to the system in one call.
    std::setvbuf(file.stream, nullptr, _IONBF, 0);
    file.buffer.resize(buffer_size);
    return file;
}

void begin_record(RecordFile& file, std::uint64_t bytes) {
    if (file.piece_left > 0) record_length_fault(file);
    file.record_left = bytes;
    file.continues = false;
    begin_piece(file);
    if (bytes == 0) end_piece(file);
}

void put_bytes(RecordFile& file, const char* bytes, std::size_t count) {
    while (count > 0) {
        if (file.piece_left == 0) record_length_fault(file);
        const std::size_t part = std::min<std::size_t>(count, file.piece_left);
        buffer_bytes(file, bytes, part);
        file.piece_left -= static_cast<std::uint32_t>(part);
        if (file.piece_left == 0) end_piece(file);
        bytes += part;
        count -= part;
    }
}

void put_text(RecordFile& file, std::string_view text, std::size_t width) {
    std::string padded(text.substr(0, width));
    padded.resize(width, ' ');
    put_bytes(file, padded.data(), width);
}

void int32_record(RecordFile& file, std::int32_t value) {
    begin_record(file, 4);
    put_int32(file, value);
}

void logical_record(RecordFile& file, bool value) {
    begin_record(file, 4);
    put_logical(file, value);
}

void text_record(RecordFile& file, std::string_view text, std::size_t width) {
    begin_record(file, width);
    put_text(file, text, width);
}

void int32_list_record(RecordFile& file, const std::vector<std::int32_t>& values) {
    begin_record(file, std::uint64_t{4} * values.size());
    for (const std::int32_t value : values) put_int32(file, value);
}

void plain_text(RecordFile& file, std::string_view text) {
    buffer_bytes(file, text.data(), text.size());
}

std::uint64_t close(RecordFile& file) {
    if (file.piece_left > 0) record_length_fault(file);
    flush(file);
    errno = 0;
    if (std::fclose(file.stream) != 0) write_failed(file.path);
    file.stream = nullptr;
    return file.bytes_written;
}

} // namespace record_file
