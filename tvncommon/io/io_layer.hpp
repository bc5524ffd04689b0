#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Files by unit number: text line by line, and binary files of records. Nothing here ends the run:
// every operation returns a status number, 0 for success. `file_units` is built on this layer for
// callers that do not test the status.
//
// A record file is a sequence of records: a 32-bit little-endian length, the payload, the same
// length again. A payload too long for that length is written as a chain of sub-records, each with
// its own pair of lengths. A negative leading length means that a further sub-record follows, a
// negative trailing length that one came before. The length is the magnitude.
namespace io_layer {

inline constexpr int standardInput = -2;
inline constexpr int screen = -1;
inline constexpr int standardError = 0;
inline constexpr int firstUnit = 1100;
inline constexpr int lastUnit = 20000;
inline constexpr std::size_t maximumLineBytes = 1048576;

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
inline constexpr int lockedElsewhere = 604; // another process has locked the file

// When text is written: after every line, for output that a user follows during the run, or in
// blocks.
enum class Flush { everyLine, inBlocks };

// True if this layer opens files of this name: at most 300 characters, none of them NUL.
bool canBeName(const std::string& path);

// Returns the status of an open that failed with this `errno`.
int statusOfOpen(int error);

// Clears all units without closing their files and restores the standard streams.
void reset();

// Sets `found` to whether a file or folder of that name exists. Only ENOENT and ENOTDIR mean that
// it does not exist. After any other failure the file may exist, so the call returns a status. It
// also returns one for a name for which `canBeName` is false.
int exists(const std::string& path, bool& found);

// Units. `takeUnit` returns the lowest free number of the range, or 0 if none is free.
int takeUnit();
bool unitTaken(int unit);
// Writes pending output, closes the file and frees the number. A unit without a file is only freed.
// A new file that was not committed is removed.
int releaseUnit(int unit);
// The same for a unit of `openTextForCommit` or `openRecordsForCommit`, but syncs the new file and
// renames it to the old one. After a failure before the rename the old file is unchanged.
int commitUnit(int unit);
// Releases all units and returns the first failure, with the file's name in `path`.
int releaseAll(std::string& path);
// Returns the name under which the unit's file was opened, for messages.
std::string pathOf(int unit);

int openTextRead(int unit, const std::string& path);
int openTextReplace(int unit, const std::string& path, Flush flush);
int openRecordsRead(int unit, const std::string& path);
int openRecordsReplace(int unit, const std::string& path);
// The same as `openRecordsRead` with one system call, which matters for many small files. A folder
// or a pipe is opened too, and its first read fails.
int openRecordsUnchecked(int unit, const std::string& path);

// Open a new file that replaces `path` at `commitUnit`; until then `path` is not changed. A device,
// a pipe, and a file in a folder where no file can be created are written in place.
int openTextForCommit(int unit, const std::string& path);
int openRecordsForCommit(int unit, const std::string& path);

// Opens a text for writing, takes an exclusive advisory lock and then empties the file. The lock
// ends with the unit. If another process holds it, the call waits, or returns `lockedElsewhere`
// without `wait`. A device, a pipe, and a file on a file system without locks are opened without
// one. Fails for a file that another unit reads.
int openTextLocked(int unit, const std::string& path, Flush flush, bool wait);

// What a unit is open for: nothing, lines of text, or records.
enum class Form { unconnected, formatted, unformatted };
Form formOf(int unit);

// A line longer than `maximumLineBytes` is an error, or is cut for a caller that uses fewer
// columns. On the standard input, which may never end, it is always an error.
enum class LongLine { refused, cut };

// Reads the next line without its line end. Returns `endOfFile` if there is none and `invalidData`
// for a line that is too long. A last line needs no line feed. A carriage return before the line
// feed is dropped.
int readLine(int unit, std::string& line, LongLine longLine = LongLine::refused);
// Write text, and text with a line feed. With `Flush::inBlocks` it is pending until `flush` or
// until a block of 32 KiB is full. On standard output and standard error each ASCII control
// character other than line feed and tab becomes `?`.
int writeText(int unit, std::string_view text);
int writeLine(int unit, std::string_view line);
// Writes pending output and then the block, in one write of its own. Replaces control characters
// like `writeText`.
int writeBlock(int unit, const char* block, std::size_t size);
int flush(int unit);
int rewind(int unit);

// Returns the number of bytes between the read position and the end of the file.
std::int64_t bytesLeft(int unit);

// Reads the first `size` payload bytes of one record into `into` and skips the rest. Returns
// `readFailed` for a record that is cut off, has a shorter payload, or whose two lengths differ.
int readRecord(int unit, void* into, std::int64_t size);

// The same in several pieces.
int beginRecord(int unit);
int readInRecord(int unit, void* into, std::int64_t size);
int endRecord(int unit);

// Reads the lengths of one record but not its payload, whose bytes `size` receives. `readFailed` as
// in `readRecord`, `endOfFile` if there is no further record.
int skipRecord(int unit, std::int64_t& size);

// Writes one record. A payload above `maximumSubRecord` bytes is written as sub-records. The
// default is the maximum of the simulator's run time: 2^31 - 1 bytes less the two lengths.
int writeRecord(int unit, const void* payload, std::int64_t size,
                std::int64_t maximumSubRecord = 2147483639);

} // namespace io_layer
