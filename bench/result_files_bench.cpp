// Compares the reader of a result file of one component with a plain read of the same bytes into
// the same array. The file is in the page cache.

#include "bench/bench_files.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr std::int32_t valueCount = 1 << 20;
constexpr std::int64_t valueBytes = std::int64_t{8} * valueCount;
constexpr std::int64_t valuesBegin = 4 + TVNBinaryFile::headerLength + 4 + 4;

const std::string fileName = bench_files::path("values");
std::vector<double> values(valueCount, 1.0);

void check(int status) {
    if (status != io_layer::ok) bench_files::fail(fileName);
}

void makeFile() {
    std::string header = "3600.0 hydraulic head";
    header.resize(55, ' ');
    header += "#!TVN001LER08010001048576";
    const int unit = file_units::getUnit();
    check(io_layer::openRecordsReplace(unit, fileName));
    check(io_layer::writeRecord(unit, header.data(), static_cast<std::int64_t>(header.size())));
    check(io_layer::writeRecord(unit, values.data(), valueBytes));
    file_units::freeUnit(unit);
}

void plainRead(benchmark::State& state) {
    for (auto _ : state) {
        const int descriptor = bench_files::open(fileName, O_RDONLY);
        for (std::int64_t done = 0; done < valueBytes;) {
            const std::int64_t n =
                pread(descriptor, reinterpret_cast<char*>(values.data()) + done,
                      static_cast<std::size_t>(valueBytes - done), valuesBegin + done);
            if (n <= 0) bench_files::fail(fileName);
            done += n;
        }
        close(descriptor);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * valueBytes);
}

void readResultFile(benchmark::State& state) {
    for (auto _ : state) {
        TVNBinaryFile::read_r8_1d(fileName, valueCount, values.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * valueBytes);
}

BENCHMARK(plainRead)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(readResultFile)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    makeFile();
    benchmark::RunSpecifiedBenchmarks();
    unlink(fileName.c_str());
    return 0;
}
