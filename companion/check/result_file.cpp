#include "companion/check/result_file.hpp"

#include "companion/check/attempt.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/free_form.hpp"

#include <cmath>

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

std::string counted(std::int64_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what);
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

std::vector<FileFault> headerFaults(const TVNBinaryFile::BinaryHeader& header,
                                    const ResultFile& file, double time) {
    std::vector<FileFault> faults;
    const std::string_view code = wordsOf(file).code;
    if (!header.isOldFormat) {
        if (header.dataType != code)
            faults.push_back({CellState::otherType, "other_type",
                              "its header names values of type " + header.dataType + ", but " +
                                  std::string(code) + " is read"});
        if (header.numComponents != static_cast<std::int32_t>(file.components))
            faults.push_back({CellState::otherComponents, "other_components",
                              "its header names " + counted(header.numComponents, "components") +
                                  ", but " + std::to_string(file.components) + " are read"});
        if (header.numValues != file.count)
            faults.push_back({CellState::otherCount, "other_count",
                              "its header names " + counted(header.numValues, "values") +
                                  ", but the first " + std::to_string(file.count) + " are read"});
        if (header.byteOrder != "LE")
            faults.push_back(
                {CellState::otherType, "other_byte_order",
                 "its header names the byte order " + header.byteOrder + ", but LE is read"});
    }
    double stamp = 0;
    if (free_form::readReal(header.timestamp, stamp) == io_layer::ok && std::isfinite(time) &&
        stamp != time)
        faults.push_back({CellState::present, "other_time",
                          "its time stamp is " + header.timestamp +
                              ", that of the output time is " + "another"});
    return faults;
}

FileFault unreadable(int status) {
    return {CellState::unreadable, "unreadable_file",
            "it cannot be read: " + error::ioStatErrorMsg(status), true};
}

} // namespace

std::vector<FileFault> testResultFile(const ResultFile& file, double time) {
    const OpenUnit open;
    if (open.unit == 0) return {unreadable(io_layer::tooManyOpenFiles)};
    if (const int status = io_layer::openRecordsRead(open.unit, file.name); status != io_layer::ok)
        return {unreadable(status)};
    std::string header(TVNBinaryFile::headerLength, ' ');
    if (io_layer::readRecord(open.unit, header.data(), TVNBinaryFile::headerLength) != io_layer::ok)
        return {{CellState::malformed, "malformed_header",
                 "it does not begin with a header of 80 characters", true}};
    int status = io_layer::ok;
    const std::int64_t found =
        valuesInRecords(open.unit, file, TVNBinaryFile::isNewerFileFormat(header), status);
    std::vector<FileFault> faults;
    if (found < file.count || status != io_layer::ok)
        faults.push_back({CellState::tooShort, "file_too_short",
                          found < file.count
                              ? "it has " + counted(found, "values") + ", but " +
                                    std::to_string(file.count) + " are read"
                              : "the length after a record differs from the length before it",
                          true});
    TVNBinaryFile::BinaryHeader parsed;
    const Outcome outcome =
        attempt([&] { parsed = TVNBinaryFile::parseTVNBinFileHeader(header, file.name); });
    if (outcome.ended) {
        std::string text = "its header is malformed: " + outcome.messages.back();
        if (const std::size_t at = text.find("; File: "); at != std::string::npos) text.resize(at);
        faults.push_back({CellState::malformed, "malformed_header", text});
    } else {
        const std::vector<FileFault> more = headerFaults(parsed, file, time);
        faults.insert(faults.end(), more.begin(), more.end());
    }
    return faults;
}

} // namespace check
