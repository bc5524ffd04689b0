// The program, with a table in place of its screen output: what each stage of the run took. Run it
// in the folder of a problem.
//
//     stages [--make_plot_control]
//
// Columns: time by the clock and of the processor (milliseconds), bytes that were read and written
// (MB), their sum in MB for each second by the clock, system calls, page faults that brought a page
// to the process for the first time, and allocations.

#include "meshrake/meshrake.hpp"
#include "meshrake/model/stages.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <array>
#include <cstdio>
#include <ctime>
#include <sys/resource.h>

namespace {

using stages::Stage;
using system_calls::FileInfo;
using system_calls::OpenMode;
using system_calls::Table;

struct Cost {
    double elapsed = 0, processor = 0; // seconds
    std::int64_t bytesRead = 0, bytesWritten = 0, calls = 0, faults = 0, allocations = 0;
};

constexpr std::array<const char*, 8> names{
    "description",     "mesh",       "truncation", "reading",
    "derived columns", "formatting", "writing",    "products"};

std::array<Cost, names.size()> costs;
Cost begin;   // of the stage that runs
Cost pending; // calls and bytes of that stage
bool measuring = false;
Table real;

double now(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + 1.0e-9 * static_cast<double>(time.tv_nsec);
}

Cost clocks() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    Cost cost;
    cost.elapsed = now(CLOCK_MONOTONIC);
    cost.processor = now(CLOCK_PROCESS_CPUTIME_ID);
    cost.faults = usage.ru_minflt;
    return cost;
}

void endStage(Stage stage) {
    if (!measuring) return;
    const Cost end = clocks();
    Cost& cost = costs[static_cast<std::size_t>(stage)];
    cost.elapsed += end.elapsed - begin.elapsed;
    cost.processor += end.processor - begin.processor;
    cost.faults += end.faults - begin.faults;
    cost.bytesRead += pending.bytesRead;
    cost.bytesWritten += pending.bytesWritten;
    cost.calls += pending.calls;
    cost.allocations += pending.allocations;
    pending = {};
    begin = clocks();
}

std::ptrdiff_t countRead(std::ptrdiff_t n) {
    ++pending.calls;
    pending.bytesRead += n > 0 ? n : 0;
    return n;
}

std::ptrdiff_t countWrite(std::ptrdiff_t n) {
    ++pending.calls;
    pending.bytesWritten += n > 0 ? n : 0;
    return n;
}

Table countingTable() {
    Table table = real;
    table.open = [](const char* path, OpenMode mode) {
        return ++pending.calls, real.open(path, mode);
    };
    table.close = [](int d) { return ++pending.calls, real.close(d); };
    table.seek = [](int d, std::int64_t to) { return ++pending.calls, real.seek(d, to); };
    table.exists = [](const char* path) { return ++pending.calls, real.exists(path); };
    table.fileInfo = [](int d, FileInfo& info) { return ++pending.calls, real.fileInfo(d, info); };
    table.read = [](int d, void* into, std::size_t size) {
        return countRead(real.read(d, into, size));
    };
    table.readBoth = [](int d, void* first, std::size_t m, void* second, std::size_t n) {
        return countRead(real.readBoth(d, first, m, second, n));
    };
    table.readAt = [](int d, void* into, std::size_t size, std::int64_t at) {
        return countRead(real.readAt(d, into, size, at));
    };
    table.write = [](int d, const void* from, std::size_t size) {
        if (d == 1) return static_cast<std::ptrdiff_t>(size); // the screen
        const stages::Scope stage(Stage::writing);
        return countWrite(real.write(d, from, size));
    };
    table.writeAt = [](int d, const void* from, std::size_t size, std::int64_t at) {
        const stages::Scope stage(Stage::writing);
        return countWrite(real.writeAt(d, from, size, at));
    };
    table.reserve = [](int d, std::int64_t at, std::int64_t size) {
        const stages::Scope stage(Stage::writing);
        return ++pending.calls, real.reserve(d, at, size);
    };
    table.truncate = [](int d, std::int64_t size) {
        const stages::Scope stage(Stage::writing);
        return ++pending.calls, real.truncate(d, size);
    };
    table.sync = [](int d) {
        const stages::Scope stage(Stage::writing);
        return ++pending.calls, real.sync(d);
    };
    table.allocate = [](std::size_t size) { return ++pending.allocations, real.allocate(size); };
    return table;
}

void printRow(const char* name, const Cost& cost) {
    const double megabytes = static_cast<double>(cost.bytesRead + cost.bytesWritten) / 1.0e6;
    std::printf(
        "%-16s %9.1f %9.1f %9.1f %9.1f %8.0f %8lld %8lld %8lld\n", name, 1000 * cost.elapsed,
        1000 * cost.processor, static_cast<double>(cost.bytesRead) / 1.0e6,
        static_cast<double>(cost.bytesWritten) / 1.0e6,
        cost.elapsed > 0 ? megabytes / cost.elapsed : 0.0, static_cast<long long>(cost.calls),
        static_cast<long long>(cost.faults), static_cast<long long>(cost.allocations));
}

void printTable() {
    std::printf("%-16s %9s %9s %9s %9s %8s %8s %8s %8s\n", "stage", "clock ms", "CPU ms", "read MB",
                "write MB", "MB/s", "calls", "faults", "allocs");
    Cost all;
    for (std::size_t i = 0; i < costs.size(); ++i) {
        const Cost& cost = costs[i];
        printRow(names[i], cost);
        all.elapsed += cost.elapsed;
        all.processor += cost.processor;
        all.bytesRead += cost.bytesRead;
        all.bytesWritten += cost.bytesWritten;
        all.calls += cost.calls;
        all.faults += cost.faults;
        all.allocations += cost.allocations;
    }
    printRow("all", all);
}

} // namespace

int main(int argc, char** argv) {
    if (!system_calls::prepareProcess()) {
        error::writeLastBanner(true);
        return 1;
    }
    real = system_calls::systemTable();
    system_calls::table = countingTable();
    stages::observe(endStage);
    begin = clocks();
    measuring = true;
    const int status = meshrake_main(argc, argv);
    endStage(Stage::description);
    measuring = false;
    system_calls::table = real;
    printTable();
    return status;
}
