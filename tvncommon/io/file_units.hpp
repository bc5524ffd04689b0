#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/io/io_layer.hpp"

// The I/O layer for callers that do not test a status: a failure ends the run with a banner that
// names the file and has the status of the I/O layer.
namespace file_units {

// Takes the lowest free unit of the range 1100 to 20000. Ends the run if none is free.
int getUnit();

// Closes and frees the unit. Ends the run if the number is outside the range or free already, or if
// pending output cannot be written.
void freeUnit(int unit);

// The same for a unit of `openTextForCommit` or `io_layer::openRecordsForCommit`, whose new file
// replaces the old one.
void commitUnit(int unit);

// Closes and frees all units of the range.
void freeUnitAll();

// True if a file or folder of that name exists. Ends the run, naming the file, if the system
// reports a failure other than ENOENT and ENOTDIR, and for a name that no file here can have.
bool exists(const std::string& path);

// Open a file on a free unit and return the unit: an existing file for reading, or a new or emptied
// file for writing. `openTextForCommit` leaves an existing file as it is until `commitUnit`. A
// failed open ends the run.
int openTextRead(const std::string& path);
int openTextReplace(const std::string& path, io_layer::Flush flush);
int openTextForCommit(const std::string& path);
int openRecordsRead(const std::string& path);

// Opens a file of records with one system call, see `io_layer::openRecordsUnchecked`. Returns 0 for
// a missing file if `mayBeMissing`. Any other failure ends the run.
int openResultFile(const std::string& path, bool mayBeMissing);

// Open an existing file for reading, as text or as records. The banner for a missing file is "File
// not found: " and its name.
void open_ascii_file(int& unit, const std::string& filename);
void open_unformatted_file(int& unit, const std::string& filename);

void writeLine(int unit, std::string_view line);
void writeBlock(int unit, const char* block, std::size_t size);
void rewind(int unit);

// Reads the next line into `line`. Returns false at the end of the file.
bool readLine(int unit, std::string& line,
              io_layer::LongLine longLine = io_layer::LongLine::refused);

// Read one record and return its first bytes: `size` of them, a 32-bit integer, a 32-bit logical,
// or a text of `length` characters.
void readRecord(int unit, void* into, std::int64_t size);
std::int32_t readInteger(int unit);
bool readLogical(int unit);
std::string readText(int unit, std::int64_t length);

// Read one record in several pieces.
void beginRecord(int unit);
void readInRecord(int unit, void* into, std::int64_t size);
void endRecord(int unit);

// Ends the run if `count` is negative or the rest of the file is shorter than `count` items of
// `bytesEach` bytes. Call it before memory is allocated for a count that was read from the file.
// `items` names in the banner what is counted, such as "mobile species".
void checkCount(int unit, std::int64_t count, std::int64_t bytesEach, std::string_view items);

// Ends the run with the banner of a read error for this unit's file; `what` is a sentence about its
// contents.
[[noreturn]] void badContents(int unit, std::string_view what);

// Reads one record of `count` values into `array`, which is allocated under `name` after the count
// was compared with the size of the file.
template<class T>
void readArray(int unit, std::int64_t count, std::vector<T>& array, std::string_view name) {
    checkCount(unit, count, static_cast<std::int64_t>(sizeof(T)), "values of " + std::string(name));
    ArrayHelpers::allocateArray(array, count, name);
    readRecord(unit, array.data(), count * static_cast<std::int64_t>(sizeof(T)));
}

} // namespace file_units
