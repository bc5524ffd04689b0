#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

// Record files as the simulator writes them: a sequence of records with nothing in between. A
// record with a long payload consists of several sub-records, any other one of a single sub-record:
//
//   int32  leading length; negative if another sub-record of the record follows
//   bytes  as many as the magnitude of the length
//   int32  trailing length; negative if a sub-record of the record came before
//
// Both lengths of a single sub-record are thus positive, and the lengths of three sub-records have
// the signs (-,+) (-,-) (+,-). A value can extend over two sub-records. Numbers are little-endian,
// logicals have 32 bits, all of them set for true, and texts are padded with blanks.
namespace record_file {

static_assert(std::endian::native == std::endian::little, "values are copied without conversion");

// The longest sub-record that the simulator writes: the largest signed 32-bit number minus the
// bytes of the two lengths.
constexpr std::uint32_t defaultSubRecordBytes = 2147483639U;

struct RecordFile {
    std::string path;
    std::FILE* stream = nullptr;
    std::vector<char> buffer;                // bytes not yet passed to the system
    std::size_t used = 0;                    // number of these bytes
    std::uint32_t maximumSubRecordBytes = 0; // longer records are split
    std::uint32_t subRecordLength = 0;       // bytes of the current sub-record
    std::uint32_t subRecordRemaining = 0;    // bytes still to be put into it
    std::uint64_t recordRemaining = 0;       // bytes of the record after this sub-record
    bool continues = false;                  // the sub-record is not the first of its record
    std::uint64_t bytesWritten = 0;          // size of the file so far
};

// Ends the program with status 1 and a line with the file and the system's reason (errno).
[[noreturn]] void writeFailed(const std::string& path);

// Creates the file, or empties it if it exists. On failure, ends the program by writeFailed.
RecordFile create(const std::string& path, std::uint32_t maximumSubRecordBytes);

// Begins a record of `bytes` bytes. The record ends when that many bytes have been put into it. The
// program aborts if a record gets too few or too many bytes.
void beginRecord(RecordFile& file, std::uint64_t bytes);

// Puts bytes into the open record, across ends of sub-records and of the buffer.
void putBytes(RecordFile& file, const char* bytes, std::size_t count);

// Puts one value of `size` bytes into the open record. There can be hundreds of millions of values,
// so the usual case, in which neither the sub-record nor the buffer ends, is short and inline.
inline void putValue(RecordFile& file, const void* value, std::uint32_t size) {
    if (size < file.subRecordRemaining && file.used + size <= file.buffer.size()) {
        std::memcpy(file.buffer.data() + file.used, value, size);
        file.used += size;
        file.subRecordRemaining -= size;
    } else {
        putBytes(file, static_cast<const char*>(value), size);
    }
}
inline void putInt32(RecordFile& file, std::int32_t value) {
    putValue(file, &value, 4);
}
inline void putLogical(RecordFile& file, bool value) {
    putInt32(file, value ? -1 : 0);
}
inline void putReal32(RecordFile& file, float value) {
    putValue(file, &value, 4);
}
inline void putReal64(RecordFile& file, double value) {
    putValue(file, &value, 8);
}

// Puts a text of `width` bytes, truncated or padded with blanks.
void putText(RecordFile& file, std::string_view text, std::size_t width);

// Write a whole record: one value, one text, or a list.
void int32Record(RecordFile& file, std::int32_t value);
void logicalRecord(RecordFile& file, bool value);
void textRecord(RecordFile& file, std::string_view text, std::size_t width);
void int32ListRecord(RecordFile& file, const std::vector<std::int32_t>& values);

// Writes bytes without record lengths, for the text files of a problem.
void plainText(RecordFile& file, std::string_view text);

// Writes the rest of the buffer and closes the file. Returns its size in bytes.
std::uint64_t close(RecordFile& file);

} // namespace record_file
