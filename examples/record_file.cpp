#include "examples/record_file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace record_file {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 20;

void flush(RecordFile& file) {
    errno = 0;
    if (std::fwrite(file.buffer.data(), 1, file.used, file.stream) != file.used)
        writeFailed(file.path);
    file.bytesWritten += file.used;
    file.used = 0;
}

void bufferBytes(RecordFile& file, const char* bytes, std::size_t count) {
    while (count > 0) {
        if (file.used == file.buffer.size()) flush(file);
        const std::size_t part = std::min(count, file.buffer.size() - file.used);
        std::memcpy(file.buffer.data() + file.used, bytes, part);
        file.used += part;
        bytes += part;
        count -= part;
    }
}

void bufferLength(RecordFile& file, std::uint32_t length, bool negative) {
    const auto positive = static_cast<std::int32_t>(length);
    const std::int32_t signedLength = negative ? -positive : positive;
    char bytes[4];
    std::memcpy(bytes, &signedLength, 4);
    bufferBytes(file, bytes, 4);
}

void beginSubRecord(RecordFile& file) {
    const std::uint64_t length =
        std::min<std::uint64_t>(file.recordRemaining, file.maximumSubRecordBytes);
    file.subRecordLength = static_cast<std::uint32_t>(length);
    file.subRecordRemaining = file.subRecordLength;
    file.recordRemaining -= length;
    bufferLength(file, file.subRecordLength, file.recordRemaining > 0);
}

void endSubRecord(RecordFile& file) {
    bufferLength(file, file.subRecordLength, file.continues);
    file.continues = true;
    if (file.recordRemaining > 0) beginSubRecord(file);
}

// A record with too few or too many bytes is a fault of this program, and the file is invalid.
[[noreturn]] void recordLengthFault(const RecordFile& file) {
    std::fprintf(stderr, "make_problem: record of wrong length in %s\n", file.path.c_str());
    std::abort();
}

} // namespace

[[noreturn]] void writeFailed(const std::string& path) {
    const char* reason = errno != 0 ? std::strerror(errno) : "write error";
    std::fprintf(stderr, "make_problem: cannot write %s: %s\n", path.c_str(), reason);
    std::exit(1);
}

RecordFile create(const std::string& path, std::uint32_t maximumSubRecordBytes) {
    RecordFile file;
    file.path = path;
    file.maximumSubRecordBytes = maximumSubRecordBytes;
    errno = 0;
    file.stream = std::fopen(path.c_str(), "wb");
    if (file.stream == nullptr) writeFailed(path);
    // Only the buffer of the record file is used, which is written in one call.
    std::setvbuf(file.stream, nullptr, _IONBF, 0);
    file.buffer.resize(bufferSize);
    return file;
}

void beginRecord(RecordFile& file, std::uint64_t bytes) {
    if (file.subRecordRemaining > 0) recordLengthFault(file);
    file.recordRemaining = bytes;
    file.continues = false;
    beginSubRecord(file);
    if (bytes == 0) endSubRecord(file);
}

void putBytes(RecordFile& file, const char* bytes, std::size_t count) {
    while (count > 0) {
        if (file.subRecordRemaining == 0) recordLengthFault(file);
        const std::size_t part = std::min<std::size_t>(count, file.subRecordRemaining);
        bufferBytes(file, bytes, part);
        file.subRecordRemaining -= static_cast<std::uint32_t>(part);
        if (file.subRecordRemaining == 0) endSubRecord(file);
        bytes += part;
        count -= part;
    }
}

void putText(RecordFile& file, std::string_view text, std::size_t width) {
    std::string padded(text.substr(0, width));
    padded.resize(width, ' ');
    putBytes(file, padded.data(), width);
}

void int32Record(RecordFile& file, std::int32_t value) {
    beginRecord(file, 4);
    putInt32(file, value);
}

void logicalRecord(RecordFile& file, bool value) {
    beginRecord(file, 4);
    putLogical(file, value);
}

void textRecord(RecordFile& file, std::string_view text, std::size_t width) {
    beginRecord(file, width);
    putText(file, text, width);
}

void int32ListRecord(RecordFile& file, const std::vector<std::int32_t>& values) {
    beginRecord(file, std::uint64_t{4} * values.size());
    for (const std::int32_t value : values) putInt32(file, value);
}

void plainText(RecordFile& file, std::string_view text) {
    bufferBytes(file, text.data(), text.size());
}

std::uint64_t close(RecordFile& file) {
    if (file.subRecordRemaining > 0) recordLengthFault(file);
    flush(file);
    errno = 0;
    if (std::fclose(file.stream) != 0) writeFailed(file.path);
    file.stream = nullptr;
    return file.bytesWritten;
}

} // namespace record_file
