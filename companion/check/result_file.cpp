#include "companion/check/result_file.hpp"

#include "companion/check/attempt.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>

namespace check {

using plot_data::ResultFile;

namespace {

struct TypeWords {
    std::string_view code; // in the header
    std::int64_t bytes;
};

// In the order of the type codes of model::DataType, from 1.
constexpr TypeWords types[] = {{"R04", 4}, {"R08", 8}, {"I04", 4}};

const TypeWords& wordsOf(const ResultFile& file) {
    return types[static_cast<std::size_t>(file.type) - 1];
}

// A unit that is freed when the test is over.
struct OpenUnit {
    int unit = io_layer::takeUnit();
    OpenUnit() = default;
    OpenUnit(const OpenUnit&) = delete;
    OpenUnit& operator=(const OpenUnit&) = delete;
    ~OpenUnit() {
        if (unit > 0) io_layer::releaseUnit(unit);
    }
};

std::string counted(std::int64_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string areRead(std::int64_t count) {
    return std::to_string(count) + (count == 1 ? " is read" : " are read");
}

// Reads the lengths of the records that a run reads. A newer file has a record for each component,
// an older one a record for each node or element. Returns the number of values of each component
// that are there, at most those that are read.
std::int64_t valuesInRecords(int unit, const ResultFile& file, bool isNewer, int& status) {
    const auto components = static_cast<std::int64_t>(file.components);
    const bool byComponent = isNewer || components == 1;
    const std::int64_t records = byComponent ? components : file.count;
    const std::int64_t perRecord = byComponent ? file.count : components;
    for (std::int64_t r = 0; r < records; ++r) {
        std::int64_t bytes = 0;
        status = io_layer::skipRecord(unit, bytes);
        const std::int64_t found = bytes / wordsOf(file).bytes;
        if (status == io_layer::ok && found >= perRecord) continue;
        return byComponent ? std::min(found, perRecord) : r;
    }
    return file.count;
}

// Faults of a newer header; the run ignores them.
std::vector<FileFault> headerFaults(const TVNBinaryFile::BinaryHeader& header,
                                    const ResultFile& file) {
    std::vector<FileFault> faults;
    const std::string_view code = wordsOf(file).code;
    if (header.dataType != code)
        faults.push_back({CellState::otherType, "other_type",
                          "its header names values of type " + header.dataType + ", but " +
                              std::string(code) + " is read"});
    if (header.numComponents != static_cast<std::int32_t>(file.components))
        faults.push_back({CellState::otherComponents, "other_components",
                          "its header names " + counted(header.numComponents, "component") +
                              ", but " + areRead(static_cast<std::int64_t>(file.components))});
    if (header.numValues != file.count)
        faults.push_back({CellState::otherCount, "other_count",
                          "its header names " + counted(header.numValues, "value") + ", but " +
                              areRead(file.count)});
    if (header.byteOrder != "LE")
        faults.push_back(
            {CellState::otherType, "other_byte_order",
             "its header names the byte order " + header.byteOrder + ", but LE is read"});
    return faults;
}

FileFault unreadable(int status) {
    return {CellState::unreadable, "unreadable_file",
            "it cannot be read: " + error::ioStatErrorMsg(status), true};
}

} // namespace

std::string malformedText(const std::string& message) {
    std::string text = "its header is malformed: " + message.substr(0, message.rfind(" File: "));
    while (text.ends_with('.') || text.ends_with(';')) text.pop_back();
    return text;
}

FileTest testResultFile(const ResultFile& file) {
    const OpenUnit open;
    if (open.unit == 0) return {{unreadable(io_layer::tooManyOpenFiles)}};
    if (const int status = io_layer::openRecordsRead(open.unit, file.name); status != io_layer::ok)
        return {{unreadable(status)}};
    std::string header(TVNBinaryFile::headerLength, ' ');
    if (io_layer::readRecord(open.unit, header.data(), TVNBinaryFile::headerLength) != io_layer::ok)
        return {{{CellState::malformed, "malformed_header",
                  "it does not begin with a header of 80 characters", true}}};
    FileTest result;
    int status = io_layer::ok;
    const std::int64_t found =
        valuesInRecords(open.unit, file, TVNBinaryFile::isNewerFileFormat(header), status);
    if (found < file.count)
        result.faults.push_back(
            {CellState::tooShort, "file_too_short",
             "it has " + counted(found, "value") + ", but " + areRead(file.count), true});
    else if (status != io_layer::ok)
        result.faults.push_back({CellState::tooShort, "file_too_short",
                                 "a record is cut off, or has two different lengths", true});
    TVNBinaryFile::BinaryHeader parsed;
    const Outcome outcome =
        attempt([&] { parsed = TVNBinaryFile::parseTVNBinFileHeader(header, file.name); });
    if (outcome.ended) {
        result.faults.push_back(
            {CellState::malformed, "malformed_header", malformedText(outcome.messages.back())});
        return result;
    }
    result.timeStamp = parsed.timestamp;
    if (parsed.isOldFormat) return result;
    const std::vector<FileFault> more = headerFaults(parsed, file);
    result.faults.insert(result.faults.end(), more.begin(), more.end());
    return result;
}

} // namespace check
