#include "fuzz/support.hpp"

#include "meshrake/run/reset.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/TVNBinaryFile_readers.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

// Compares the reader of records with a simple one, and calls the readers of result files. The
// first byte of the input selects a reader, the second a number of values. The rest is the file.
namespace {

using namespace TVNBinaryFile;

constexpr int unit = io_layer::firstUnit;

// Returns the payload of the record at `position` and advances it. Returns nothing if the record is
// truncated or the two lengths of a sub-record differ.
std::optional<std::string> nextRecord(std::string_view file, std::size_t& position) {
    std::string payload;
    for (bool continues = true; continues;) {
        std::int32_t front = 0, back = 0;
        if (file.size() - position < 4) return {};
        std::memcpy(&front, file.data() + position, 4);
        continues = front < 0;
        const auto length = static_cast<std::uint64_t>(std::abs(std::int64_t{front}));
        if (length + 8 > file.size() - position) return {};
        payload += file.substr(position + 4, length);
        std::memcpy(&back, file.data() + position + 4 + length, 4);
        if (static_cast<std::uint64_t>(std::abs(std::int64_t{back})) != length) return {};
        position += length + 8;
    }
    return payload;
}

// Reads `size` bytes of each record.
void compareRecords(std::string_view file, std::size_t size) {
    io_layer::openRecordsRead(unit, "file");
    std::vector<char> bytes(size);
    for (std::size_t position = 0;;) {
        const bool atEnd = position == file.size();
        const std::optional<std::string> payload = nextRecord(file, position);
        const int status = io_layer::readRecord(unit, bytes.data(), std::ssize(bytes));
        if (atEnd) return fuzz::require(status == io_layer::endOfFile, "no end of the file");
        const bool good = payload && payload->size() >= size;
        fuzz::require((status == io_layer::ok) == good, "wrong status of a record");
        if (!good) return;
        fuzz::require(std::equal(bytes.begin(), bytes.end(), payload->begin()), "wrong payload");
        fuzz::require(io_layer::bytesLeft(unit) == std::ssize(file.substr(position)),
                      "wrong position after a record");
    }
}

void writeAndRead(std::string_view payload, std::int64_t maximumSubRecord) {
    io_layer::openRecordsReplace(unit, "file");
    io_layer::writeRecord(unit, payload.data(), std::ssize(payload), maximumSubRecord);
    io_layer::releaseUnit(unit);
    compareRecords(fuzz::files().at("file"), payload.size());
}

template<class T>
T* arrayOf(std::int32_t n) {
    static std::vector<T> values;
    // A new array of exactly n values, so that the sanitizer detects a write beyond them.
    values = std::vector<T>(static_cast<std::size_t>(n));
    return values.data();
}

const std::vector<void (*)(std::int32_t n)> readers = {
    [](std::int32_t n) { read_i4_1d("file", n, arrayOf<std::int32_t>(n)); },
    [](std::int32_t n) { read_r4_1d("file", n, arrayOf<float>(n)); },
    [](std::int32_t n) { read_r8_1d("file", n, arrayOf<double>(n)); },
    [](std::int32_t n) { read_r4_2d("file", n, 3, arrayOf<float>(3 * n)); },
    [](std::int32_t n) { read_r8_2d("file", n, 6, arrayOf<double>(6 * n)); },
    [](std::int32_t n) { read_safe_i4_1d("file", n, arrayOf<std::int32_t>(n)); },
    [](std::int32_t n) { read_safe_r4_1d("file", n, arrayOf<float>(n)); },
    [](std::int32_t n) { read_safe_r8_1d("file", n, arrayOf<double>(n)); },
    [](std::int32_t) { numVals_r8_1d("file"); },
    [](std::int32_t) {
        const std::string header = readTVNBinFileHeader("file");
        const BinaryHeader parsed = parseTVNBinFileHeader(header, "file");
        fuzz::require(parsed.isOldFormat == !isNewerFileFormat(header), "wrong generation");
        fuzz::require(parsed.isOldFormat || (parsed.numComponents > 0 && parsed.numValues > 0),
                      "a count of the header is not positive");
    }};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::string file(reinterpret_cast<const char*>(data) + 2, size - 2);
    fuzz::setFiles(fuzz::noFiles, {{"file", file}});
    run::resetAll();
    const std::size_t reader = data[0] % (readers.size() + 2);
    if (reader == readers.size())
        compareRecords(file, data[1]);
    else if (reader > readers.size())
        writeAndRead(file, data[1] + 1);
    else
        fuzz::endsRun([&] { readers[reader](data[1]); });
    return 0;
}
