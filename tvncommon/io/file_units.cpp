#include "tvncommon/io/file_units.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"

namespace file_units {

namespace {

void checkRead(int unit, int status) {
    if (status != io_layer::ok) error::checkFileRead(status, io_layer::pathOf(unit));
}

void checkWrite(int unit, int status) {
    if (status != io_layer::ok) error::checkFileWrite(status, io_layer::pathOf(unit));
}

// Returns the name without trailing blanks. Ends the run if no such file exists.
std::string nameOfExisting(std::string_view filename) {
    std::string name(StringHelpers::trimRight(filename));
    if (!exists(name)) error::fatalError("File not found: " + name);
    return name;
}

} // namespace

int getUnit() {
    const int unit = io_layer::takeUnit();
    if (unit == 0) error::fatalError("No free file units, range exhausted: [1100,20000]");
    return unit;
}

void freeUnit(int unit) {
    const std::string number = std::to_string(unit);
    if (unit < io_layer::firstUnit || unit > io_layer::lastUnit)
        error::fatalError("File unit " + number + " outside of range [1100,20000]");
    if (!io_layer::unitTaken(unit)) error::fatalError("File unit " + number + " already free");
    const std::string path = io_layer::pathOf(unit);
    error::checkFileWrite(io_layer::releaseUnit(unit), path);
}

void commitUnit(int unit) {
    const std::string path = io_layer::pathOf(unit);
    error::checkFileWrite(io_layer::commitUnit(unit), path);
}

void freeUnitAll() {
    std::string path;
    const int status = io_layer::releaseAll(path);
    error::checkFileWrite(status, path);
}

bool exists(const std::string& path) {
    bool found = false;
    const int status = io_layer::exists(path, found);
    if (status != io_layer::ok)
        error::fatalErrorStat(status, "Failed to find out if file exists: " + path);
    return found;
}

int openTextRead(const std::string& path) {
    const int unit = getUnit();
    error::checkFileOpen(io_layer::openTextRead(unit, path), path);
    return unit;
}

int openTextReplace(const std::string& path, io_layer::Flush flush) {
    const int unit = getUnit();
    error::checkFileOpen(io_layer::openTextReplace(unit, path, flush), path);
    return unit;
}

int openTextForCommit(const std::string& path) {
    const int unit = getUnit();
    error::checkFileOpen(io_layer::openTextForCommit(unit, path), path);
    return unit;
}

int openRecordsRead(const std::string& path) {
    const int unit = getUnit();
    error::checkFileOpen(io_layer::openRecordsRead(unit, path), path);
    return unit;
}

int openResultFile(const std::string& path, bool mayBeMissing) {
    const int unit = getUnit();
    const int status = io_layer::openRecordsUnchecked(unit, path);
    // The status of ENOENT, and that of ENOTDIR.
    const bool missing = status == io_layer::fileNotFound ||
                         (status == io_layer::invalidPath && io_layer::canBeName(path));
    if (!missing || !mayBeMissing) error::checkFileOpen(status, path);
    if (missing) freeUnit(unit);
    return missing ? 0 : unit;
}

void open_ascii_file(int& unit, const std::string& filename) {
    unit = openTextRead(nameOfExisting(filename));
}

void open_unformatted_file(int& unit, const std::string& filename) {
    unit = openRecordsRead(nameOfExisting(filename));
}

void writeLine(int unit, std::string_view line) {
    checkWrite(unit, io_layer::writeLine(unit, line));
}

void writeBlock(int unit, const char* block, std::size_t size) {
    checkWrite(unit, io_layer::writeBlock(unit, block, size));
}

void rewind(int unit) {
    const int status = io_layer::rewind(unit);
    if (status == io_layer::writeFailed) checkWrite(unit, status);
    checkRead(unit, status);
}

bool readLine(int unit, std::string& line, io_layer::LongLine longLine) {
    const int status = io_layer::readLine(unit, line, longLine);
    if (status == io_layer::endOfFile) return false;
    if (status == io_layer::invalidData)
        badContents(unit, "A line has more than " + std::to_string(io_layer::maximumLineBytes) +
                              " characters.");
    checkRead(unit, status);
    return true;
}

void readRecord(int unit, void* into, std::int64_t size) {
    checkRead(unit, io_layer::readRecord(unit, into, size));
}

void beginRecord(int unit) {
    checkRead(unit, io_layer::beginRecord(unit));
}

void readInRecord(int unit, void* into, std::int64_t size) {
    checkRead(unit, io_layer::readInRecord(unit, into, size));
}

void endRecord(int unit) {
    checkRead(unit, io_layer::endRecord(unit));
}

std::int32_t readInteger(int unit) {
    std::int32_t value = 0;
    readRecord(unit, &value, sizeof value);
    return value;
}

// Compilers store true as 1 or as -1: both have the lowest bit set.
bool readLogical(int unit) {
    return (readInteger(unit) & 1) != 0;
}

std::string readText(int unit, std::int64_t length) {
    std::string text(static_cast<std::size_t>(length), ' ');
    readRecord(unit, text.data(), length);
    return text;
}

void checkCount(int unit, std::int64_t count, std::int64_t bytesEach, std::string_view items) {
    const std::string counted = std::to_string(count) + " " + std::string(items);
    if (count < 0) badContents(unit, "A count is negative: " + counted);
    if (count > io_layer::bytesLeft(unit) / bytesEach)
        badContents(unit, "More than the file can hold: " + counted);
}

void badContents(int unit, std::string_view what) {
    error::input_error("Error reading file: " + io_layer::pathOf(unit) + "\n" + std::string(what));
}

} // namespace file_units
