#include "tvncommon/io/TVNBinaryFile.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"

#include <algorithm>
#include <vector>

namespace TVNBinaryFile {

namespace {

OpenFile openAndReadHeader(const std::string& filename, std::string* header, Missing missing) {
    OpenFile file{file_units::openResultFile(filename, missing == Missing::returnsFalse), filename,
                  std::string(headerLength, ' ')};
    if (file.unit == 0) return file;
    const int status = io_layer::readRecord(file.unit, file.header.data(), headerLength);
    if (status != io_layer::ok)
        error::input_error_stat(status, "Error reading header from file " + filename);
    if (header) *header = file.header;
    return file;
}

// Reads one record. `what` is its part of the file in the message of a failure.
void readValues(const OpenFile& file, void* into, std::int64_t bytes, const std::string& what) {
    const int status = io_layer::readRecord(file.unit, into, bytes);
    if (status != io_layer::ok)
        error::input_error_stat(status, "Error reading " + what + "values from file " + file.name);
}

void readComponentRecord(const OpenFile& file, int component, std::int64_t bytes, void* into) {
    readValues(file, into, bytes, "component " + std::to_string(component) + " ");
}

template<class T>
std::int64_t bytesOf(std::int32_t n, const T*) {
    return std::max(n, 0) * static_cast<std::int64_t>(sizeof(T));
}

template<class T>
bool read_1d(const std::string& filename, std::int32_t n, T* array, std::string* header,
             Missing missing) {
    const OpenFile file = openAndReadHeader(filename, header, missing);
    if (file.unit == 0) return false;
    readValues(file, array, bytesOf(n, array), "");
    file_units::freeUnit(file.unit);
    return true;
}

template<class T>
void readNodeByNode(const OpenFile& file, std::int32_t n, int components, T* const* arrays) {
    std::vector<T> values(static_cast<std::size_t>(std::max(components, 0)));
    const auto bytes = static_cast<std::int64_t>(sizeof(T) * values.size());
    for (std::int32_t i = 0; i < n; ++i) {
        readValues(file, values.data(), bytes, "");
        for (int c = 0; c < components; ++c) arrays[c][i] = values[static_cast<std::size_t>(c)];
    }
}

template<class T>
bool readComponents(const std::string& filename, std::int32_t n, int components, T* const* arrays,
                    std::string* header, Missing missing) {
    const OpenFile file = openAndReadHeader(filename, header, missing);
    if (file.unit == 0) return false;
    if (isNewerFileFormat(file.header)) {
        for (int c = 0; c < components; ++c)
            readComponentRecord(file, c + 1, bytesOf(n, arrays[c]), arrays[c]);
    } else {
        readNodeByNode(file, n, components, arrays);
    }
    file_units::freeUnit(file.unit);
    return true;
}

std::string inFile(const std::string& filename) {
    return "\nFile: " + filename;
}

// Returns the number in `length` characters of the header from `offset` (from 0) on.
std::int32_t headerNumber(std::string_view header, std::size_t offset, std::size_t length,
                          const std::string& what, const std::string& filename) {
    const std::string_view text = header.substr(offset, length);
    std::int32_t value = 0;
    const int status = free_form::readInteger(text, value);
    if (status != io_layer::ok)
        error::fatalErrorStat(status, "Failed to parse " + what +
                                          " from binary file header. String: \"" +
                                          std::string(text) + "\"" + inFile(filename));
    return value;
}

std::string trimmedPart(std::string_view header, std::size_t offset, std::size_t length) {
    return std::string(StringHelpers::trimRight(header.substr(offset, length)));
}

} // namespace

std::string readTVNBinFileHeader(const std::string& filename) {
    OpenFile file = openAndReadHeader(filename, nullptr, Missing::endsRun);
    file_units::freeUnit(file.unit);
    return std::move(file.header);
}

std::string readHeaderIfExists(const std::string& filename) {
    OpenFile file = openAndReadHeader(filename, nullptr, Missing::returnsFalse);
    if (file.unit == 0) return "";
    file_units::freeUnit(file.unit);
    return std::move(file.header);
}

bool isNewerFileFormat(std::string_view header) {
    return header.size() >= magicOffset + magicText.size() &&
           header.substr(magicOffset, magicText.size()) == magicText;
}

BinaryHeader parseTVNBinFileHeader(std::string_view header, const std::string& filename) {
    BinaryHeader parsed;
    if (header.size() < headerLength)
        error::fatalError("Binary file header is too short. Expected at least " +
                          std::to_string(headerLength) + " characters but found only " +
                          std::to_string(header.size()) + "." + inFile(filename));
    const std::size_t begin = StringHelpers::findFirstNotOf(header, " ");
    if (begin >= magicOffset || StringHelpers::trimRight(header).empty())
        error::fatalError("Invalid binary file header format. Timestamp missing or malformed." +
                          inFile(filename));
    const std::size_t blank =
        StringHelpers::findFirstOf(header, " ", static_cast<std::int64_t>(begin));
    if (blank >= magicOffset)
        error::fatalError("Invalid binary file header format. Timestamp not terminated by space." +
                          inFile(filename));
    parsed.timestamp = std::string(header.substr(0, blank - 1));
    parsed.message = trimmedPart(header, blank, magicOffset - blank);
    parsed.magic = trimmedPart(header, magicOffset, magicText.size());
    parsed.isOldFormat = parsed.magic != magicText;
    if (parsed.isOldFormat) return parsed;

    parsed.formatVersion = headerNumber(header, 60, 3, "file version number", filename);
    parsed.byteOrder = trimmedPart(header, 63, 2);
    parsed.dataType = trimmedPart(header, 65, 3);
    parsed.numComponents = headerNumber(header, 68, 2, "number of components", filename);
    if (parsed.numComponents < 1)
        error::fatalError("Invalid number of components in binary file header: " +
                          std::to_string(parsed.numComponents) + inFile(filename));
    parsed.numValues = headerNumber(header, 70, 10, "number of values", filename);
    if (parsed.numValues <= 0)
        error::fatalError("Invalid number of values in binary file header: " +
                          std::to_string(parsed.numValues) + inFile(filename));
    return parsed;
}

OpenFile open(const std::string& filename, Missing missing) {
    return openAndReadHeader(filename, nullptr, missing);
}

bool hasRecordPerComponent(const OpenFile& file, int components) {
    return components == 1 || isNewerFileFormat(file.header);
}

bool hasCompleteRecords(const std::string& filename, int components, std::int64_t bytes) {
    OpenFile file{file_units::getUnit(), filename, std::string(headerLength, ' ')};
    bool complete =
        io_layer::openRecordsUnchecked(file.unit, filename) == io_layer::ok &&
        io_layer::readRecord(file.unit, file.header.data(), headerLength) == io_layer::ok &&
        hasRecordPerComponent(file, components);
    for (int c = 0; c < components && complete; ++c) {
        std::int64_t size = 0;
        complete = io_layer::skipRecord(file.unit, size) == io_layer::ok && size >= bytes;
    }
    file_units::freeUnit(file.unit);
    return complete;
}

void readNextComponent(const OpenFile& file, int component, int components, std::int64_t bytes,
                       void* into) {
    if (components == 1) return readValues(file, into, bytes, "");
    readComponentRecord(file, component, bytes, into);
}

bool read_i4_1d(const std::string& filename, std::int32_t n, std::int32_t* array,
                std::string* header, Missing missing) {
    return read_1d(filename, n, array, header, missing);
}

bool read_r4_1d(const std::string& filename, std::int32_t n, float* array, std::string* header,
                Missing missing) {
    return read_1d(filename, n, array, header, missing);
}

bool read_r8_1d(const std::string& filename, std::int32_t n, double* array, std::string* header,
                Missing missing) {
    return read_1d(filename, n, array, header, missing);
}

bool read_r4_components(const std::string& filename, std::int32_t n, int components,
                        float* const* arrays, std::string* header, Missing missing) {
    return readComponents(filename, n, components, arrays, header, missing);
}

bool read_r8_components(const std::string& filename, std::int32_t n, int components,
                        double* const* arrays, std::string* header, Missing missing) {
    return readComponents(filename, n, components, arrays, header, missing);
}

} // namespace TVNBinaryFile
