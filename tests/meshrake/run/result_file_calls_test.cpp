#include "tests/support/runs.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <map>

// On a network file system each call that asks for a file or its state takes a reply of a server,
// so the number of calls for each of the many result files is limited.
namespace {

using system_calls::Table;

using Counts = std::map<std::string, int>;
std::map<std::string, Counts> callsOf; // by file
std::map<int, std::string> openFiles;  // by descriptor

Table countingTable() {
    static const Table real = system_calls::systemTable();
    Table table = real;
    table.open = [](const char* path, system_calls::OpenMode mode) {
        const int descriptor = real.open(path, mode);
        ++callsOf[path]["open"];
        openFiles[descriptor] = path;
        return descriptor;
    };
    table.close = [](int d) { return ++callsOf[openFiles[d]]["close"], real.close(d); };
    table.fileInfo = [](int d, system_calls::FileInfo& info) {
        return ++callsOf[openFiles[d]]["fstat"], real.fileInfo(d, info);
    };
    table.exists = [](const char* path) { return ++callsOf[path]["stat"], real.exists(path); };
    table.seek = [](int d, std::int64_t to) {
        return ++callsOf[openFiles[d]]["lseek"], real.seek(d, to);
    };
    table.read = [](int d, void* into, std::size_t size) {
        return ++callsOf[openFiles[d]]["read"], real.read(d, into, size);
    };
    table.readBoth = [](int d, void* a, std::size_t m, void* b, std::size_t n) {
        return ++callsOf[openFiles[d]]["read"], real.readBoth(d, a, m, b, n);
    };
    return table;
}

TEST(ResultFiles, CostAnOpenTheReadsAndAClose) {
    const std::string variables = " --times 3 --variables all --species 2 --hmc 2 --domains "
                                  "pm,dual,olf,frac,chan --elements ";
    for (const char* form : {"", "tecplot binary mode\n"})
        for (const std::string& problem : {"--nx 4 --ny 3 --layers 2" + variables + "brick",
                                           "--nx 3 --ny 3 --layers 2" + variables + "prism",
                                           std::string("--nx 30 --ny 30 --layers 9 --times 2")}) {
            const sample_files::Folder folder;
            sample_files::makeProblem(problem);
            sample_files::put("batch.pfx", "t\n");
            runs::runHere({"--make_plot_control"});
            sample_files::put("t.plot.control", form + sample_files::get("t.plot.control"));
            callsOf.clear();
            system_calls::table = countingTable();
            EXPECT_EQ(runs::runHere().status, 0);
            int files = 0;
            for (const auto& [path, calls] : callsOf) {
                if (!path.ends_with(".0002") || !std::filesystem::exists(path)) continue;
                ++files;
                // One file gives the time, before its values are read.
                const std::string first = "to.conc_dual.Solute 1.0002";
                const bool twice = path == (callsOf.contains(first) ? first : "to.head_olf.0002");
                // A read fills the array and the buffer, which has the first 32768 bytes.
                const bool vector = path.starts_with("to.v_") || path.starts_with("to.q_");
                const int large = vector ? 3 : 2;
                const int reads = std::filesystem::file_size(path) > 32768 ? large : 1;
                const int times = twice ? 2 : 1;
                EXPECT_EQ(calls,
                          (Counts{{"open", times}, {"read", reads * times}, {"close", times}}))
                    << path;
            }
            EXPECT_GT(files, problem.starts_with("--nx 30") ? 5 : 50);
        }
}

} // namespace
