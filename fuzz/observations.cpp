#include "fuzz/support.hpp"

// A whole run with all comparisons. The first byte of the input selects a file, the rest is its
// contents.
namespace {

constexpr const char* names[] = {"t.observed_heads", "t.observed_heads_olf", "t.observed_d2gwt",
                                 "to.ObsShape.txt"};

constexpr const char* control = "end\n"
                                "write pm domain file\n"
                                "compare heads 3d domain\n"
                                "-1e20 1e20\n-1e20 1e20\n-1e20 1e20\n"
                                "compare gw table elevation\n"
                                "compare depth to gw table\n"
                                "end\n"
                                "write olf domain file\n"
                                "compare surface water depth\n"
                                "-1e20 1e20\n-1e20 1e20\n-1e20 1e20\n"
                                "end\n"
                                "interpolate depth to gw table\n";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    static const fuzz::Files problem = fuzz::smallProblem(1);
    const std::string file(reinterpret_cast<const char*>(data) + 1, size - 1);
    fuzz::run(problem, {{"t.plot.control", control}, {names[data[0] % std::size(names)], file}});
    return 0;
}
