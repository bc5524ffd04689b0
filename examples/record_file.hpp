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
// record is one piece, or a chain of pieces when its payload is longer than a piece may be:
//
//   int32  leading mark: length of the piece; negative when another piece of the record follows
//   bytes  as many as the length says, whatever its sign
//   int32  trailing mark: the same length; negative when the piece continues an earlier one
//
// A record in one piece thus has twice the same positive mark, and a chain of three pieces has the
// signs (-,+) (-,-) (+,-). A piece may end in the middle of a value. All numbers are little-endian,
// logicals are 32 bits wide with all bits set for true, texts are padded with blanks.
namespace record_file {

static_assert(std::endian::native == std::endian::little,
              "values are copied as they lie in memory");

// The longest piece that the simulator's run time writes: the greatest signed 32-bit number less
// the bytes of the two lengths.
constexpr std::uint32_t longestPiece = 2147483639U;

struct RecordFile {
    std::string path;
    std::FILE* stream = nullptr;
    std::vector<char> buffer;       // bytes not yet handed to the system
    std::size_t used = 0;           // how many of them
    std::uint32_t pieceLimit = 0;   // longest piece of this file, bytes
    std::uint32_t pieceLength = 0;  // length of the piece being filled
    std::uint32_t pieceLeft = 0;    // bytes it still lacks
    std::uint64_t recordLeft = 0;   // bytes of the record after this piece
    bool continues = false;         // the piece is not the first of its record
    std::uint64_t bytesWritten = 0; // size of the file so far, marks included
};

// Ends the program with status 1 and a line that names the file and the system's reason (errno).
[[noreturn]] void writeFailed(const std::string& path);

// Creates the file, or empties it when it exists. Ends the program when that fails.
RecordFile create(const std::string& path, std::uint32_t pieceLimit);

// Starts a record of `bytes` bytes. It ends by itself with the last byte put into it.
void beginRecord(RecordFile& file, std::uint64_t bytes);

// Puts bytes into the open record: the general way, across the ends of pieces and of the buffer.
void putBytes(RecordFile& file, const char* bytes, std::size_t count);

// One value of the open record. Values come by the hundred million, so the usual case, in which
// neither the piece nor the buffer ends with this value, is kept short and inline.
inline void putValue(RecordFile& file, const void* value, std::uint32_t size) {
    if (size < file.pieceLeft && file.used + size <= file.buffer.size()) {
        std::memcpy(file.buffer.data() + file.used, value, size);
        file.used += size;
        file.pieceLeft -= size;
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

// A text of `width` bytes, cut or padded with blanks.
void putText(RecordFile& file, std::string_view text, std::size_t width);

// Whole records of a single value, of a text, and of a list.
void int32Record(RecordFile& file, std::int32_t value);
void logicalRecord(RecordFile& file, bool value);
void textRecord(RecordFile& file, std::string_view text, std::size_t width);
void int32ListRecord(RecordFile& file, const std::vector<std::int32_t>& values);

// Bytes that are no record, for the text files of a problem.
void plainText(RecordFile& file, std::string_view text);

// Hands the rest to the system and closes. Returns the size of the file in bytes.
std::uint64_t close(RecordFile& file);

} // namespace record_file
