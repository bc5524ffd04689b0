#include "tvncommon/text/number_formats.hpp"

#include "tools/wide_real_reference.hpp"

#include <benchmark/benchmark.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

// There are too many values for a branch predictor to learn their order. The text is written into
// the same block of rows each time, as for a file.
constexpr std::int64_t blockRows = 1000;
constexpr std::int64_t blockCount = 100;
constexpr std::int64_t blockValues = blockRows * number_formats::valuesPerRow;
constexpr std::int64_t valueCount = blockCount * blockValues;

double anyFinite(std::mt19937_64& random) {
    for (;;) {
        const double value = std::bit_cast<double>(random());
        if (std::isfinite(value)) return value;
    }
}

enum class Values { heads, saturations, singleHeads, bitPatterns };

std::vector<double> makeValues(Values kind) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> head(50, 150);
    std::uniform_real_distribution<float> saturation(0, 1);
    std::vector<double> values(static_cast<std::size_t>(valueCount));
    for (double& value : values) {
        switch (kind) {
        case Values::heads:
            value = head(random);
            break;
        case Values::saturations:
            value = static_cast<double>(saturation(random));
            break;
        case Values::singleHeads:
            value = static_cast<double>(static_cast<float>(head(random)));
            break;
        case Values::bitPatterns:
            value = anyFinite(random);
            break;
        }
    }
    return values;
}

// Reports the time per value and the bytes of text per second.
void report(benchmark::State& state, std::int64_t bytes) {
    state.counters["per_value"] = benchmark::Counter(static_cast<double>(valueCount),
                                                     benchmark::Counter::kIsIterationInvariantRate |
                                                         benchmark::Counter::kInvert);
    state.SetBytesProcessed(state.iterations() * bytes);
}

// The same as number_formats::writeRealRows with the standard library.
char* writeReferenceRows(const double* values, std::int64_t rows, char* out) {
    for (; rows > 0; --rows) {
        for (int i = 0; i < number_formats::valuesPerRow; ++i) {
            wide_real_reference::write(*values++, out);
            out += number_formats::wideRealWidth;
        }
        *out++ = '\n';
    }
    return out;
}

template<typename Number>
void writeBlocks(benchmark::State& state, const std::vector<Number>& values,
                 char* (*writeRows)(const Number*, std::int64_t, char*), std::int64_t rowBytes) {
    std::vector<char> block(static_cast<std::size_t>(blockRows * rowBytes));
    for (auto _ : state) {
        for (std::int64_t i = 0; i < blockCount; ++i) {
            writeRows(values.data() + i * blockValues, blockRows, block.data());
            benchmark::DoNotOptimize(block.data());
            benchmark::ClobberMemory();
        }
    }
    report(state, blockCount * blockRows * rowBytes);
}

void realRows(benchmark::State& state, Values kind) {
    writeBlocks<double>(state, makeValues(kind), number_formats::writeRealRows,
                        number_formats::realRowBytes);
}

void toChars(benchmark::State& state, Values kind) {
    writeBlocks<double>(state, makeValues(kind), writeReferenceRows, number_formats::realRowBytes);
}

void singleRows(benchmark::State& state, Values kind) {
    const std::vector<double> values = makeValues(kind);
    writeBlocks<float>(state, std::vector<float>(values.begin(), values.end()),
                       number_formats::writeRealRows, number_formats::realRowBytes);
}

void integerRows(benchmark::State& state) {
    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::int32_t> node(1, 2000000);
    std::vector<std::int32_t> values(static_cast<std::size_t>(valueCount));
    for (std::int32_t& value : values) value = node(random);
    writeBlocks<std::int32_t>(state, values, number_formats::writeIntegerRows,
                              number_formats::integerRowBytes);
}

BENCHMARK_CAPTURE(realRows, heads, Values::heads);
BENCHMARK_CAPTURE(toChars, heads, Values::heads);
BENCHMARK_CAPTURE(realRows, saturations, Values::saturations);
BENCHMARK_CAPTURE(toChars, saturations, Values::saturations);
BENCHMARK_CAPTURE(realRows, singleHeads, Values::singleHeads);
BENCHMARK_CAPTURE(toChars, singleHeads, Values::singleHeads);
BENCHMARK_CAPTURE(realRows, bitPatterns, Values::bitPatterns);
BENCHMARK_CAPTURE(toChars, bitPatterns, Values::bitPatterns);
BENCHMARK_CAPTURE(singleRows, saturations, Values::saturations);
BENCHMARK(integerRows);

} // namespace

BENCHMARK_MAIN();
