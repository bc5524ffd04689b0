#include "fuzz/support.hpp"

#include "meshrake/model/problem_description.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/run/reset.hpp"

#include <algorithm>

// The files of the problem description. The first byte of the input selects one of them, the rest
// is its contents.
namespace {

using fuzz::require;

void checkTitle() {
    require(model::run.titleLines.size() ==
                static_cast<std::size_t>(std::max(model::run.numTitleLines, 1)),
            "wrong number of title lines");
    for (const std::string& line : model::run.titleLines)
        require(line.size() == 60, "wrong length of a title line");
}

void checkSpecies() {
    const auto count = static_cast<std::size_t>(model::run.numSpecies);
    require(model::run.numMobileSpecies >= 0 && model::run.numImmobileSpecies >= 0,
            "negative number of species");
    require(model::run.speciesNames.size() == count && model::run.speciesFlagA.size() == count &&
                model::run.speciesFlagB.size() == count,
            "wrong size of an array of species");
}

void checkFractions() {
    require(model::run.hmcFractionNames.size() ==
                static_cast<std::size_t>(model::run.numHmcFractions),
            "wrong number of fractions");
    for (const std::string& name : model::run.hmcFractionNames)
        require(name.starts_with("f_") && name.size() <= 80, "invalid name of a fraction");
}

struct Part {
    const char* file;
    void (*read)();
    void (*check)();
};
constexpr Part parts[] = {{"to.gen", model::titleRead, checkTitle},
                          {"to.species", model::speciesRead, checkSpecies},
                          {"to.hmc", model::hmcFractionsRead, checkFractions}};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const Part& part = parts[data[0] % std::size(parts)];
    const std::string file(reinterpret_cast<const char*>(data) + 1, size - 1);
    fuzz::setFiles(fuzz::noFiles, {{part.file, file}});
    run::resetAll();
    model::run.problemPrefix = "t";
    if (!fuzz::endsRun(part.read)) part.check();
    return 0;
}
