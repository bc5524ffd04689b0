// Locates a hundred thousand points in a layered mesh of a million bricks, and compares that with a
// plain loop over all elements or nodes. The time for elements includes the cache file and the
// lines of progress, that for nodes and columns the lines in the echo file. Times are processor
// times for all points. The plain loop is measured on a sample of the points.

#include "bench/bench_files.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/observation_compare/element_search.hpp"
#include "meshrake/observation_compare/node_search.hpp"
#include "meshrake/observation_compare/shape_cache.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <ctime>
#include <random>

namespace {

using namespace observation_compare;
using box_tree::Point;
using model::Domain;
using model::run;

constexpr std::int32_t cellsX = 250, cellsY = 160, layers = 25;
constexpr std::size_t pointCount = 100000;
constexpr std::size_t sampleStep = 5000;

// Two kilometres of hills, with layers that become thinner towards the top.
Domain makeMesh() {
    Domain pm;
    pm.tag = model::tags::pm;
    pm.name = "pm";
    pm.nodesPerElement = 8;
    constexpr std::int32_t row = cellsX + 1, sheet = row * (cellsY + 1);
    for (std::int32_t n = 0; n < sheet * (layers + 1); ++n) {
        const double x = 8.6 * (n % row), y = 8.1 * (n % sheet / row);
        const double below = std::pow(1 - static_cast<double>(n / sheet) / layers, 1.9);
        pm.x.push_back(x);
        pm.y.push_back(y);
        pm.z.push_back(200 + 40 * std::sin(x / 400) * std::cos(y / 300) - 60 * below);
    }
    for (std::int32_t e = 0; e < cellsX * cellsY * layers; ++e) {
        const std::int32_t cell = e % (cellsX * cellsY);
        const std::int32_t n =
            e / (cellsX * cellsY) * sheet + cell / cellsX * row + cell % cellsX + 1;
        for (const std::int32_t at : {n, n + sheet})
            for (const std::int32_t corner : {at, at + 1, at + row + 1, at + row})
                pm.elementNodes.push_back(corner);
    }
    pm.nodeCount = static_cast<std::int32_t>(pm.x.size());
    pm.elementCount = cellsX * cellsY * layers;
    run.sheetCount = layers + 1;
    return pm;
}

// Most points are in the mesh, some are above the ground, below the bottom or outside in plan.
void makePoints() {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> x(-100, 2250), y(-50, 1340), z(100, 240);
    model::ObservationSet& set = run.observations;
    set.obsCount = pointCount;
    for (std::size_t i = 0; i < pointCount; ++i) {
        set.obsX.push_back(x(random));
        set.obsY.push_back(y(random));
        set.obsZ.push_back(z(random));
    }
    set.obsShape.resize(8 * pointCount);
    set.obsElement.resize(pointCount);
}

const Domain& mesh() {
    static const Domain pm = [] {
        makePoints();
        run.problemPrefix = bench_files::path("locate");
        run.echoUnit = file_units::getUnit();
        // The standard output is for the results of the benchmark, so screen output is discarded.
        static const int discarded = bench_files::open("/dev/null", O_WRONLY);
        system_calls::table.write = [](int descriptor, const void* from, std::size_t size) {
            return ::write(descriptor == 1 ? discarded : descriptor, from, size);
        };
        return makeMesh();
    }();
    return pm;
}

Point pointAt(std::size_t i) {
    const model::ObservationSet& set = run.observations;
    return {set.obsX[i], set.obsY[i], set.obsZ[i]};
}

double processorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

template<class Find>
void timePlain(benchmark::State& state, Find find) {
    mesh();
    for (auto _ : state) {
        const double begin = processorSeconds();
        for (std::size_t i = 0; i < pointCount; i += sampleStep)
            benchmark::DoNotOptimize(find(pointAt(i)));
        state.SetIterationTime((processorSeconds() - begin) * sampleStep);
    }
}

std::int32_t plainElement(const Point& point) {
    static LocalPoint rst{};
    for (std::int32_t e = 0; e < mesh().elementCount; ++e) {
        localCoordinates(elementBox(mesh(), static_cast<std::size_t>(e)), point, rst);
        if (isInside(rst)) return e + 1;
    }
    return 0;
}

std::int32_t plainNode(const Point& p, std::size_t count, bool inPlan) {
    const Domain& pm = mesh();
    double best = 1e20;
    std::size_t node = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double dx = pm.x[i] - p[0], dy = pm.y[i] - p[1], dz = inPlan ? 0 : pm.z[i] - p[2];
        const double distance = std::sqrt(dx * dx + dy * dy + dz * dz);
        if (!(distance < best)) continue;
        best = distance;
        node = i + 1;
    }
    return static_cast<std::int32_t>(node);
}

std::int32_t plainColumn(const Point& p) {
    const auto perSheet = static_cast<std::size_t>(sheetNodes(mesh()));
    const auto column = static_cast<std::size_t>(plainNode(p, perSheet, true));
    double best = -1e10;
    std::size_t top = 0;
    for (std::size_t node = column; node <= mesh().x.size(); node += perSheet) {
        if (!(mesh().z[node - 1] > best)) continue;
        best = mesh().z[node - 1];
        top = node;
    }
    return static_cast<std::int32_t>(top);
}

void elements(benchmark::State& state) {
    mesh();
    const std::string cache = model::problemFile("ObsShape.txt");
    const std::string echo = model::problemFile("eco");
    for (auto _ : state) {
        io_layer::openTextReplace(run.echoUnit, echo, io_layer::Flush::everyLine);
        const double begin = processorSeconds();
        obs_points_shape(mesh());
        state.SetIterationTime(processorSeconds() - begin);
        io_layer::releaseUnit(run.echoUnit);
        ::unlink(cache.c_str());
        ::unlink(echo.c_str());
    }
}

// Searches nodes or columns and writes the lines of the results into the echo file.
void echoed(benchmark::State& state, bool inPlan) {
    const Domain& pm = mesh();
    const model::ObservationSet& set = run.observations;
    const std::string echo = model::problemFile("eco");
    for (auto _ : state) {
        io_layer::openTextReplace(run.echoUnit, echo, io_layer::Flush::everyLine);
        const double begin = processorSeconds();
        plot_data::TextBlock block = plot_data::beginBlock(run.echoUnit);
        const std::int32_t count = inPlan ? sheetNodes(pm) : pm.nodeCount;
        const std::vector<std::int32_t> found = nearestNodes(
            {.domain = pm, .count = count, .inPlan = inPlan}, set.obsX, set.obsY, set.obsZ);
        const std::vector<std::int32_t> tops =
            inPlan ? columnTops(pm) : std::vector<std::int32_t>();
        std::int32_t node = 0;
        for (std::size_t i = 0; i < pointCount; ++i) {
            if (inPlan)
                find_top_surface_node_from_xy(
                    pointAt(i), tops[static_cast<std::size_t>(found[i] - 1)], node, pm, block);
            else
                find_node(pointAt(i), found[i], node, pm, block);
        }
        writeBlock(block);
        state.SetIterationTime(processorSeconds() - begin);
        io_layer::releaseUnit(run.echoUnit);
        ::unlink(echo.c_str());
    }
}

void nodes(benchmark::State& state) {
    echoed(state, false);
}
void columns(benchmark::State& state) {
    echoed(state, true);
}
void plainElements(benchmark::State& state) {
    timePlain(state, plainElement);
}
void plainNodes(benchmark::State& state) {
    timePlain(state, [](const Point& p) { return plainNode(p, mesh().x.size(), false); });
}
void plainColumns(benchmark::State& state) {
    timePlain(state, plainColumn);
}

BENCHMARK(elements)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(plainElements)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(nodes)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(plainNodes)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(columns)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(plainColumns)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
