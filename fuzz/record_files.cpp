#include "fuzz/support.hpp"

#include "meshrake/run/reset.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/TVNBinaryFile_readers.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

// The reader of records against one that is plain, and the readers of result files. The first byte
// of the input chooses a reader, the second a number of values; the rest is the file.
namespace {

using namespace TVNBinaryFile;

constexpr int unit = io_layer::firstUnit;

// Payload of the record that begins at `position`; nothing for one that is cut or whose two lengths
// differ.
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

void compareRecords(std::string_view file, std::size_t wanted) {
    io_layer::openRecordsRead(unit, "file");
    std::vector<char> bytes(wanted);
    for (std::size_t position = 0;;) {
        const bool atEnd = position == file.size();
        const std::optional<std::string> payload = nextRecord(file, position);
        const int status = io_layer::readRecord(unit, bytes.data(), std::ssize(bytes));
        if (atEnd) return fuzz::require(status == io_layer::endOfFile, "no end of the file");
        const bool good = payload && payload->size() >= wanted;
        fuzz::require((status == io_layer::ok) == good, "another status of a record");
        if (!good) return;
        fuzz::require(std::equal(bytes.begin(), bytes.end(), payload->begin()), "another payload");
        fuzz::require(io_layer::bytesLeft(unit) == std::ssize(file.substr(position)),
                      "another position after a record");
    }
}

void writeAndRead(std::string_view payload, std::int64_t piece) {
    io_layer::openRecordsReplace(unit, "file");
    io_layer::writeRecord(unit, payload.data(), std::ssize(payload), piece + 1);
    io_layer::releaseUnit(unit);
    compareRecords(fuzz::files().at("file"), payload.size());
}

template<class T>
T* arrayOf(std::int32_t n) {
    static std::vector<T> values;
    values =
        std::vector<T>(static_cast<std::size_t>(n)); // not a value more than the reader may set
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
        fuzz::require(parsed.isOldFormat == !isNewerFileFormat(header), "another generation");
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
        writeAndRead(file, data[1]);
    else
        fuzz::endsRun([&] { readers[reader](data[1]); });
    return 0;
}
