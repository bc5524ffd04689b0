#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/io/io_layer.hpp"

// File units and the reads and writes that nobody tests: a failure in any of them ends the run with
// a banner that names the file and tells the status of the I/O layer.
namespace file_units {

// Takes the lowest free unit of the range 1100 to 20000; ends the run when none is left.
int getUnit();

// Closes and frees the unit; ends the run for a number outside the range, one that is already free,
// and when what was still held cannot be written.
void freeUnit(int unit);

// The same for a unit of `openTextBeside` or `openRecordsBeside`, whose file takes its place.
void commitUnit(int unit);

// The same for all units of the range.
void freeUnitAll();

// True if something of that name exists, a folder included. Ends the run, naming the file, where
// the system cannot say (any failure but ENOENT and ENOTDIR) and for a name that is too long.
bool exists(const std::string& path);

// Opens a file that must be there for reading, or one to be replaced for writing, on a unit that is
// free. A failed open ends the run.
int openTextRead(const std::string& path);
int openTextReplace(const std::string& path, io_layer::Flush flush);
int openTextBeside(const std::string& path);
int openRecordsRead(const std::string& path);

// The same with a word of its own for a file that is not there: text, and records.
void open_ascii_file(int& unit, const std::string& filename);
void open_unformatted_file(int& unit, const std::string& filename);

void writeLine(int unit, std::string_view line);
void writeBlock(int unit, const char* block, std::size_t size);
void rewind(int unit);

// Next line into `line`; false at the end of the file.
bool readLine(int unit, std::string& line,
              io_layer::LongLine longLine = io_layer::LongLine::refused);

// The first bytes of one record into an array or a single value.
void readRecord(int unit, void* into, std::int64_t size);
std::int32_t readInteger(int unit);
bool readLogical(int unit);
std::string readText(int unit, std::int64_t length);

// The same in pieces, for a record that is taken apart while it is read.
void beginRecord(int unit);
void readInRecord(int unit, void* into, std::int64_t size);
void endRecord(int unit);

// Ends the run unless `count` lies in 0 to the number of items of `bytesEach` bytes that the rest
// of the file can hold. To be called before memory is taken for a count that comes from the file;
// `items` tells what is counted, such as "mobile species".
void checkCount(int unit, std::int64_t count, std::int64_t bytesEach, std::string_view items);

// Ends the run as a read error of this unit's file does, telling what is wrong with its contents.
[[noreturn]] void badContents(int unit, std::string_view what);

// One record of `count` values into `array`, which is allocated under `name` after the count has
// been held against the size of the file.
template<class T>
void readArray(int unit, std::int64_t count, std::vector<T>& array, std::string_view name) {
    checkCount(unit, count, static_cast<std::int64_t>(sizeof(T)), "values of " + std::string(name));
    ArrayHelpers::allocateArray(array, count, name);
    readRecord(unit, array.data(), count * static_cast<std::int64_t>(sizeof(T)));
}

} // namespace file_units
