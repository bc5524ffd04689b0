#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Files by their unit numbers: text line by line, and binary files of records. Nothing here ends
// the run; every operation returns a status number, 0 when all is well. `file_units` builds on this
// layer for callers who do not look at the status.
//
// A record file is a sequence of records: a 32-bit little-endian length, the payload, the same
// length again. A payload too long for that length is written as a chain of sub-records, each with
// its own pair of lengths; a negative leading length says that the record goes on behind this
// piece. Both lengths count by magnitude.
namespace io_layer {

inline constexpr int standardInput = -2;
inline constexpr int screen = -1;
inline constexpr int standardError = 0;
inline constexpr int firstUnit = 1100;
inline constexpr int lastUnit = 20000;
inline constexpr std::size_t longestLine = 1048576; // bytes

// Status numbers of this layer.
inline constexpr int ok = 0;
inline constexpr int endOfFile = -1;
inline constexpr int permissionDenied = 9;
inline constexpr int fileNotFound = 29;
inline constexpr int openFailed = 30;
inline constexpr int writeFailed = 38;
inline constexpr int readFailed = 39;
inline constexpr int outOfMemory = 41;
inline constexpr int invalidPath = 43;
inline constexpr int invalidData = 59;
inline constexpr int invalidCharacter = 64;
inline constexpr int tooManyOpenFiles = 603;
inline constexpr int lockedElsewhere = 604; // another process holds the lock of the file

// When text leaves the process: at every line, for what a person follows while the run goes on, or
// in blocks.
enum class Flush { everyLine, inBlocks };

// True for a name that this layer opens: one of at most 300 characters, none of which is NUL.
bool canBeName(const std::string& path);

// Status of an open that failed with this `errno`.
int statusOfOpen(int error);

// Forgets all units without closing them and puts back the fixed streams.
void reset();

// Sets `found` to whether something of that name exists, a folder included. ENOENT and ENOTDIR mean
// that nothing does; any other failed look returns a status, because the file may well exist. So
// does a name of more than 300 characters or with a NUL in it.
int exists(const std::string& path, bool& found);

// Units. `takeUnit` returns the lowest free number of the range, or 0 when none is left.
int takeUnit();
bool unitTaken(int unit);
// Writes what is still held, closes the file and frees the number; fine for an unconnected unit. A
// new file that was not committed is removed.
int releaseUnit(int unit);
// The same for a unit of `openTextBeside` or `openRecordsBeside`, whose new file, once it is on the
// disk, takes the place of the old one. A failure up to then keeps the old file.
int commitUnit(int unit);
// Releases all units and returns the first failure, with the file's name in `path`.
int releaseAll(std::string& path);
// Name under which the unit's file was opened, for messages.
std::string pathOf(int unit);

int openTextRead(int unit, const std::string& path);
int openTextReplace(int unit, const std::string& path, Flush flush);
int openRecordsRead(int unit, const std::string& path);
int openRecordsReplace(int unit, const std::string& path);

// Open a new file that takes the place of `path` at `commitUnit`; until then `path` stays as it is.
// A device, a pipe, and a file whose folder takes no new file, are written in place.
int openTextBeside(int unit, const std::string& path);
int openRecordsBeside(int unit, const std::string& path);

// Opens a text for writing and takes an exclusive advisory lock, which ends with the unit, before
// it empties the file. Without `wait` the status is `lockedElsewhere` if another process holds it.
// What is no regular file, or is on a file system without locks, is opened without one. Fails for a
// file that another unit reads.
int openTextLocked(int unit, const std::string& path, Flush flush, bool wait);

// What a unit is open for: lines of text, records, or nothing.
enum class Form { unconnected, formatted, unformatted };
Form formOf(int unit);

// A line of more than a mebibyte: an error, or cut there for a caller that takes fewer columns. The
// standard input, which need not end, always refuses it.
enum class LongLine { refused, cut };

// Next line without its line end; `endOfFile` when there is none, `invalidData` for a line that is
// refused. A last line without a line feed counts. A carriage return in front of the line feed is
// dropped.
int readLine(int unit, std::string& line, LongLine longLine = LongLine::refused);
// Standard output and standard error show `?` for each ASCII control character other than line feed
// and tab; files take all bytes as they are.
int writeText(int unit, std::string_view text);
int writeLine(int unit, std::string_view line);
// Hands a block to the file in one write, behind what the unit still holds.
int writeBlock(int unit, const char* block, std::size_t size);
int flush(int unit);
int rewind(int unit);

// Bytes between the reading position and the end of the file.
std::int64_t bytesLeft(int unit);

// One record: its first `size` payload bytes go to `into`, the rest is passed over. `readFailed`
// for a record that is cut short, holds less, or whose two lengths differ.
int readRecord(int unit, void* into, std::int64_t size);

// The same in pieces, for a record that is taken apart while it is read.
int beginRecord(int unit);
int readInRecord(int unit, void* into, std::int64_t size);
int endRecord(int unit);

// Writes one record; a payload above `maximumPiece` bytes becomes sub-records.
int writeRecord(int unit, const void* payload, std::int64_t size,
                std::int64_t maximumPiece = 2147483639);

} // namespace io_layer
