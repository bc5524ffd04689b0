#include "fuzz/support.hpp"

#if FUZZ_WITH_CHECK
#include "companion/check/check.hpp"

#include <algorithm>
#include <stdexcept>
#endif

// A whole run with an edited file of the problem; see `edit`. The word selects the kind of run:
// "text", "binary", "vtk" or "template".
namespace {

std::string controlFile(bool binary) {
    std::string text = binary ? "tecplot binary mode\n" : "";
    text += "end\nwrite pm domain file\n"
            "compare heads 3d domain\n-1e20 1e20\n-1e20 1e20\n-1e20 1e20\n"
            "compare gw table elevation\ncompare depth to gw table\n";
    if (binary) text += "truncate pm domain by layer\n-1e20 1e20\n0 500\n1 1\n";
    text += "end\nwrite olf domain file\n"
            "compare surface water depth\n-1e20 1e20\n-1e20 1e20\n-1e20 1e20\n";
    if (binary) text += "truncate olf domain\n-1e20 1e20\n0 500\n-1e20 1e20\n";
    text += "end\n";
    for (const char* domain : {"dual", "frac", "chan", "well", "tile"})
        text += "write " + std::string(domain) + " domain file\nend\n";
    return text + "plot pm zone isopach structure\nplot pm depth below ground surface\n";
}

// Whether `meshrake-tool check` says that a run ends with status 1. It must not change a file.
bool checkSaysThatItEnds([[maybe_unused]] const fuzz::Files& problem,
                         [[maybe_unused]] const fuzz::Files& changed, bool otherwise) {
#if FUZZ_WITH_CHECK
    fuzz::setFiles(problem, changed);
    const fuzz::Files before = fuzz::files();
    try {
        const check::Report report = check::examine(".");
        fuzz::require(!check::textOf(report).empty() && !check::jsonOf(report).empty(),
                      "no report");
        otherwise = std::ranges::any_of(report.findings, &check::Finding::endsRun);
    } catch (const std::runtime_error&) { // no problem to examine
    }
    fuzz::require(fuzz::files() == before, "check has changed a file");
#endif
    return otherwise;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Files problem = fuzz::problem();
    fuzz::Files changed;
    const std::string word =
        fuzz::edit(problem, {reinterpret_cast<const char*>(data), size}, changed);
    if (word.empty()) return 0;
    if (word != "template") changed["t.plot.control"] = controlFile(word == "binary");
    const bool ends = fuzz::run(problem, changed, word == "vtk") == 1;
    if (word == "text" || word == "binary")
        fuzz::require(checkSaysThatItEnds(problem, changed, ends) == ends,
                      "check does not agree with the run");
    return 0;
}
