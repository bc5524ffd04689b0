#include "tvncommon/file_units.hpp"

#include "tvncommon/error.hpp"
#include "tvncommon/io_layer.hpp"

namespace file_units {

namespace {

void checkRead(int unit, int status) {
    if (status != io_layer::ok) error::checkFileRead(status, io_layer::pathOf(unit));
}

void checkWrite(int unit, int status) {
    if (status != io_layer::ok) error::checkFileWrite(status, io_layer::pathOf(unit));
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

void freeUnitAll() {
    std::string path;
    const int status = io_layer::releaseAll(path);
    error::checkFileWrite(status, path);
}

void writeLine(int unit, std::string_view line) {
    checkWrite(unit, io_layer::writeLine(unit, line));
}

void writeBlock(int unit, const char* block, std::size_t size) {
    checkWrite(unit, io_layer::writeBlock(unit, block, size));
}

void rewind(int unit) {
    checkRead(unit, io_layer::rewind(unit));
}

bool readLine(int unit, std::string& line) {
    const int status = io_layer::readLine(unit, line);
    if (status == io_layer::endOfFile) return false;
    checkRead(unit, status);
    return true;
}

void readRecord(int unit, void* into, std::int64_t size) {
    checkRead(unit, io_layer::readRecord(unit, into, size));
}

std::int32_t readInteger(int unit) {
    std::int32_t value = 0;
    readRecord(unit, &value, sizeof value);
    return value;
}

// Writers differ in their true: the lowest bit tells it for all of them.
bool readLogical(int unit) {
    return (readInteger(unit) & 1) != 0;
}

std::string readText(int unit, std::int64_t length) {
    std::string text(static_cast<std::size_t>(length), ' ');
    readRecord(unit, text.data(), length);
    return text;
}

void checkCount(int unit, std::int64_t count, std::int64_t bytesEach, std::string_view what) {
    if (count >= 0 && count <= io_layer::bytesLeft(unit) / bytesEach) return;
    badContents(unit, std::string(what) + " of " + std::to_string(count) +
                          " entries does not fit the size of the file");
}

void badContents(int unit, std::string_view what) {
    error::input_error("Error reading file: " + io_layer::pathOf(unit) + "\n" + std::string(what));
}

} // namespace file_units
