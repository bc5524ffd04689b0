#include "tvncommon/io/TVNBinaryFile_readers.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/byte_file.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace TVNBinaryFile {

namespace {

constexpr std::int64_t frameBytes = 4; // of a length, before and after each record
constexpr std::int64_t valuesBegin = headerLength + 2 * frameBytes;

template<class T>
std::vector<T*> columnsOf(T* array, std::int32_t n, std::int32_t columns) {
    std::vector<T*> starts;
    for (std::int32_t c = 0; c < columns; ++c)
        starts.push_back(array + std::ptrdiff_t{c} * std::max(n, 0));
    return starts;
}

// A result file of one component, read at byte positions. Only the leading lengths of the value
// record are checked.
struct CheckedFile {
    std::string name;
    byte_file::File file;
    std::int64_t size = 0;
};

// Closes the file, which has no unit and would otherwise stay open, and ends the run.
[[noreturn]] void endRun(CheckedFile& c, int status, const std::string& message) {
    byte_file::close(c.file);
    if (status == io_layer::ok) error::input_error(message);
    error::input_error_stat(status, message);
}

void readOrEndRun(CheckedFile& c, std::int64_t position, void* into, std::int64_t size,
                  const std::string& what) {
    int status = io_layer::endOfFile;
    if (position + size <= c.size) status = byte_file::readAt(c.file, position, into, size);
    if (status != io_layer::ok) endRun(c, status, "Error reading " + what + " from file " + c.name);
}

CheckedFile openChecked(const std::string& filename, const std::string& headerName,
                        std::string* header) {
    CheckedFile c{filename, {}, 0};
    error::checkFileOpen(byte_file::open(filename, system_calls::OpenMode::read, c.file, c.size),
                         filename);
    std::array<char, valuesBegin> record;
    readOrEndRun(c, 0, record.data(), valuesBegin, headerName);
    if (header) header->assign(record.data() + frameBytes, headerLength);
    return c;
}

// Returns the length of the record after the header and reads its first `size` bytes into `into`. A
// negative length means that the record continues in a further sub-record.
std::int64_t readValueRecord(CheckedFile& c, char* into, std::int64_t size) {
    std::int64_t position = valuesBegin, total = 0;
    for (bool continues = true; continues;) {
        std::int32_t marker = 0;
        readOrEndRun(c, position, &marker, frameBytes, "block size");
        const std::int64_t length = marker < 0 ? -std::int64_t{marker} : marker;
        continues = marker < 0;
        const std::int64_t part = std::min(length, size - total);
        if (part > 0) readOrEndRun(c, position + frameBytes, into + total, part, "values");
        total += length;
        position += length + 2 * frameBytes;
    }
    return total;
}

std::int32_t numValsWork_1d(const std::string& filename, std::int64_t bytesPerValue) {
    CheckedFile c = openChecked(filename, "header data", nullptr);
    const std::int64_t bytes = readValueRecord(c, nullptr, 0);
    byte_file::close(c.file);
    return static_cast<std::int32_t>(bytes / bytesPerValue);
}

template<class T>
void read_safe(const std::string& filename, std::int32_t n, T* array, std::string* header) {
    CheckedFile c = openChecked(filename, "header", header);
    const std::int64_t bytes = readValueRecord(c, nullptr, 0);
    const std::int64_t values = bytes / static_cast<std::int64_t>(sizeof(T));
    if (values != n)
        endRun(c, io_layer::ok,
               "Size mismatch reading file " + filename + "\nNum values in file: " +
                   std::to_string(values) + "\nNum values to read: " + std::to_string(n));
    readValueRecord(c, reinterpret_cast<char*>(array), n * static_cast<std::int64_t>(sizeof(T)));
    byte_file::close(c.file);
}

} // namespace

void read_r4_vec2(const std::string& filename, std::int32_t n, float* a1, float* a2,
                  std::string* header) {
    read_r4_components(filename, n, 2, std::array{a1, a2}.data(), header);
}

void read_r8_vec2(const std::string& filename, std::int32_t n, double* a1, double* a2,
                  std::string* header) {
    read_r8_components(filename, n, 2, std::array{a1, a2}.data(), header);
}

void read_r4_vec3(const std::string& filename, std::int32_t n, float* a1, float* a2, float* a3,
                  std::string* header) {
    read_r4_components(filename, n, 3, std::array{a1, a2, a3}.data(), header);
}

void read_r8_vec3(const std::string& filename, std::int32_t n, double* a1, double* a2, double* a3,
                  std::string* header) {
    read_r8_components(filename, n, 3, std::array{a1, a2, a3}.data(), header);
}

void read_r4_tensor(const std::string& filename, std::int32_t n, float* a1, float* a2, float* a3,
                    float* a4, float* a5, float* a6, std::string* header) {
    read_r4_components(filename, n, 6, std::array{a1, a2, a3, a4, a5, a6}.data(), header);
}

void read_r8_tensor(const std::string& filename, std::int32_t n, double* a1, double* a2, double* a3,
                    double* a4, double* a5, double* a6, std::string* header) {
    read_r8_components(filename, n, 6, std::array{a1, a2, a3, a4, a5, a6}.data(), header);
}

void read_r4_2d(const std::string& filename, std::int32_t n, std::int32_t columns, float* array,
                std::string* header) {
    read_r4_components(filename, n, columns, columnsOf(array, n, columns).data(), header);
}

void read_r8_2d(const std::string& filename, std::int32_t n, std::int32_t columns, double* array,
                std::string* header) {
    read_r8_components(filename, n, columns, columnsOf(array, n, columns).data(), header);
}

void read_safe_i4_1d(const std::string& filename, std::int32_t n, std::int32_t* array,
                     std::string* header) {
    read_safe(filename, n, array, header);
}

void read_safe_r4_1d(const std::string& filename, std::int32_t n, float* array,
                     std::string* header) {
    read_safe(filename, n, array, header);
}

void read_safe_r8_1d(const std::string& filename, std::int32_t n, double* array,
                     std::string* header) {
    read_safe(filename, n, array, header);
}

std::int32_t numVals_i4_1d(const std::string& filename) {
    return numValsWork_1d(filename, sizeof(std::int32_t));
}

std::int32_t numVals_r4_1d(const std::string& filename) {
    return numValsWork_1d(filename, sizeof(float));
}

std::int32_t numVals_r8_1d(const std::string& filename) {
    return numValsWork_1d(filename, sizeof(double));
}

} // namespace TVNBinaryFile
