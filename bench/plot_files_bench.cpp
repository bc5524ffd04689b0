// Compares formatting and writing an array, and element lists, with a plain write of the same bytes
// in blocks of a mebibyte. Each round writes a new file. The time includes opening and closing it,
// but not its removal.

#include "bench/bench_files.hpp"
#include "meshrake/plot_data/array_writing.hpp"
#include "meshrake/plot_data/zone.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

using model::Domain;

constexpr std::int32_t valueCount = 1 << 20;

const std::string fileName = bench_files::path("dat");

// A mesh of bricks, numbered layer by layer.
constexpr std::int32_t cells = 100; // along x and y
constexpr std::int32_t layers = 50;

struct Subject {
    Domain domain;
    std::vector<double> heads;
    std::vector<float> velocities;
};

void makeMesh(Domain& domain) {
    constexpr std::int32_t row = cells + 1;
    constexpr std::int32_t sheet = row * row;
    domain.tag = model::tags::pm;
    domain.name = "pm";
    domain.nodesPerElement = 8;
    domain.nodeCount = sheet * (layers + 1);
    domain.elementCount = cells * cells * layers;
    for (std::int32_t k = 0; k < layers; ++k)
        for (std::int32_t j = 0; j < cells; ++j)
            for (std::int32_t i = 0; i < cells; ++i) {
                const std::int32_t n = k * sheet + j * row + i + 1;
                for (const std::int32_t at : {n, n + 1, n + row + 1, n + row})
                    domain.elementNodes.push_back(at);
                for (const std::int32_t at : {n, n + 1, n + row + 1, n + row})
                    domain.elementNodes.push_back(at + sheet);
            }
    domain.elementIncluded.assign(static_cast<std::size_t>(domain.elementCount), 1);
    for (std::int32_t n = 1; n <= domain.nodeCount; ++n) domain.nodeRenumber.push_back(n);
}

Subject makeSubject() {
    Subject subject;
    makeMesh(subject.domain);
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> head(50, 150);
    std::normal_distribution<float> velocity(0, 1.0e-6F);
    for (std::int32_t i = 0; i < valueCount; ++i) {
        subject.heads.push_back(head(random));
        subject.velocities.push_back(velocity(random));
    }
    return subject;
}

Subject subject = makeSubject();

void writeHeads(Domain& domain) {
    plot_data::tecplotWriteArrayReal8(1, valueCount, subject.heads.data(), {}, "head", domain);
}

void writeVelocities(Domain& domain) {
    plot_data::tecplotWriteArrayReal4(1, valueCount, subject.velocities.data(), {}, "velocity",
                                      domain);
}

void writeFile(void (*write)(Domain&)) {
    Domain& domain = subject.domain;
    domain.tecplotUnit = file_units::getUnit();
    if (io_layer::openTextReplace(domain.tecplotUnit, fileName, io_layer::Flush::inBlocks) !=
        io_layer::ok)
        bench_files::fail(fileName);
    write(domain);
    file_units::freeUnit(domain.tecplotUnit);
}

std::string textOf(void (*write)(Domain&)) {
    writeFile(write);
    std::ifstream file(fileName, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), {});
    unlink(fileName.c_str());
    return text;
}

void formatted(benchmark::State& state, void (*write)(Domain&)) {
    const auto bytes = static_cast<std::int64_t>(textOf(write).size());
    for (auto _ : state) {
        const auto begin = bench_files::Clock::now();
        writeFile(write);
        state.SetIterationTime(bench_files::secondsSince(begin));
        unlink(fileName.c_str());
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}

void writePlainly(const std::string& text) {
    constexpr std::size_t blockSize = 1048576;
    const int descriptor = bench_files::open(fileName, O_WRONLY | O_CREAT | O_TRUNC);
    for (std::size_t done = 0; done < text.size();) {
        const auto n =
            ::write(descriptor, text.data() + done, std::min(blockSize, text.size() - done));
        if (n <= 0) bench_files::fail(fileName);
        done += static_cast<std::size_t>(n);
    }
    if (close(descriptor) != 0) bench_files::fail(fileName);
}

void plain(benchmark::State& state, void (*write)(Domain&)) {
    const std::string text = textOf(write);
    for (auto _ : state) {
        const auto begin = bench_files::Clock::now();
        writePlainly(text);
        state.SetIterationTime(bench_files::secondsSince(begin));
        unlink(fileName.c_str());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

#define MESHRAKE_BENCH(function, name, write)                                                      \
    BENCHMARK_CAPTURE(function, name, write)->UseManualTime()->Unit(benchmark::kMillisecond)

MESHRAKE_BENCH(plain, heads, writeHeads);
MESHRAKE_BENCH(formatted, heads, writeHeads);
MESHRAKE_BENCH(plain, velocities, writeVelocities);
MESHRAKE_BENCH(formatted, velocities, writeVelocities);
MESHRAKE_BENCH(plain, connectivity, plot_data::tecplotWriteConnectivity);
MESHRAKE_BENCH(formatted, connectivity, plot_data::tecplotWriteConnectivity);

} // namespace

BENCHMARK_MAIN();
