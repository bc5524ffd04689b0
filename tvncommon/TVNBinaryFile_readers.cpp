#include "tvncommon/TVNBinaryFile_readers.hpp"

#include "tvncommon/TVNBinaryFile.hpp"
#include "tvncommon/byte_file.hpp"
#include "tvncommon/error.hpp"
#include "tvncommon/io_layer.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace TVNBinaryFile {

namespace {

constexpr std::int64_t frameBytes = 4; // of a length, in front of a record and behind it

void copyHeader(const std::string& filename, std::string* header) {
    if (header) *header = readTVNBinFileHeader(filename);
}

template<class T>
std::vector<T*> columnsOf(T* array, std::int32_t n, std::int32_t columns) {
    std::vector<T*> starts;
    for (std::int32_t c = 0; c < columns; ++c)
        starts.push_back(array + std::ptrdiff_t{c} * std::max(n, 0));
    return starts;
}

void mustRead(const byte_file::File& file, std::int64_t position, void* into, std::int64_t size,
              const std::string& what, const std::string& filename) {
    const int status = byte_file::readAt(file, position, into, size);
    if (status != io_layer::ok)
        error::input_error_stat(status, "Error reading " + what + " from file " + filename);
}

// Length of the record behind the header. A negative length says that the record goes on.
std::int64_t valueBytes(const std::string& filename, const std::string& headerName) {
    byte_file::File file;
    std::int64_t size = 0;
    error::checkFileOpen(byte_file::open(filename, system_calls::OpenMode::read, file, size),
                         filename);
    std::array<char, headerLength + 2 * frameBytes> headerRecord;
    mustRead(file, 0, headerRecord.data(), headerRecord.size(), headerName, filename);
    std::int64_t position = headerRecord.size(), total = 0;
    for (bool goesOn = true; goesOn;) {
        std::int32_t marker = 0;
        mustRead(file, position, &marker, frameBytes, "block size", filename);
        const std::int64_t length = marker < 0 ? -std::int64_t{marker} : marker;
        goesOn = marker < 0;
        total += length;
        position += length + 2 * frameBytes;
    }
    byte_file::close(file);
    return total;
}

std::int32_t numValsWork_1d(const std::string& filename, std::int64_t bytesPerValue) {
    return static_cast<std::int32_t>(valueBytes(filename, "header data") / bytesPerValue);
}

void expectValues(const std::string& filename, std::int32_t n, std::int64_t bytesPerValue) {
    const std::int64_t values = valueBytes(filename, "header") / bytesPerValue;
    if (values != n)
        error::input_error("Size mismatch reading file " + filename + "\nNum values in file: " +
                           std::to_string(values) + "\nNum values to read: " + std::to_string(n));
}

} // namespace

void read_r4_tensor(const std::string& filename, std::int32_t n, float* a1, float* a2, float* a3,
                    float* a4, float* a5, float* a6, std::string* header) {
    copyHeader(filename, header);
    const std::array arrays{a1, a2, a3, a4, a5, a6};
    read_r4_components(filename, n, static_cast<int>(arrays.size()), arrays.data());
}

void read_r8_tensor(const std::string& filename, std::int32_t n, double* a1, double* a2, double* a3,
                    double* a4, double* a5, double* a6, std::string* header) {
    copyHeader(filename, header);
    const std::array arrays{a1, a2, a3, a4, a5, a6};
    read_r8_components(filename, n, static_cast<int>(arrays.size()), arrays.data());
}

void read_r4_2d(const std::string& filename, std::int32_t n, std::int32_t columns, float* array,
                std::string* header) {
    copyHeader(filename, header);
    read_r4_components(filename, n, columns, columnsOf(array, n, columns).data());
}

void read_r8_2d(const std::string& filename, std::int32_t n, std::int32_t columns, double* array,
                std::string* header) {
    copyHeader(filename, header);
    read_r8_components(filename, n, columns, columnsOf(array, n, columns).data());
}

void read_safe_i4_1d(const std::string& filename, std::int32_t n, std::int32_t* array,
                     std::string* header) {
    expectValues(filename, n, sizeof *array);
    copyHeader(filename, header);
    read_i4_1d(filename, n, array);
}

void read_safe_r4_1d(const std::string& filename, std::int32_t n, float* array,
                     std::string* header) {
    expectValues(filename, n, sizeof *array);
    copyHeader(filename, header);
    read_r4_1d(filename, n, array);
}

void read_safe_r8_1d(const std::string& filename, std::int32_t n, double* array,
                     std::string* header) {
    expectValues(filename, n, sizeof *array);
    copyHeader(filename, header);
    read_r8_1d(filename, n, array);
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
