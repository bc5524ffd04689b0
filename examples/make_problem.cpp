// Writes the files of a sample problem, as the simulator writes them: a hill slope catchment with a
// stream and a series of storms. It is for trying, testing and measuring the post-processor.
//
//   make_problem /tmp/small
//   make_problem --elements prism --domains olf,frac,chan,well,tile,dual --variables all /tmp/every
//   make_problem --species Nitrate,Heat:heat,Calcite:immobile --coupling mixed --hmc 4 /tmp/mixed
//   make_problem --nx 500 --ny 500 --layers 39 --times 2 --variables head,sat,v /tmp/large
//   make_problem --times 12 --step 7200 --storm --species Nitrate --sites nodes /tmp/storm
//   make_problem --help
//
// The program shares no code with the reader of these files, so that an error in either one shows
// as a difference between the two.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>
#include <system_error>
#include <vector>

#include "examples/problem_domains.hpp"
#include "examples/problem_files.hpp"
#include "examples/problem_mesh.hpp"
#include "examples/problem_observations.hpp"
#include "examples/problem_options.hpp"
#include "examples/problem_weather.hpp"

namespace {

void createDirectory(const std::string& directory) {
    std::error_code fault;
    std::filesystem::create_directories(directory, fault);
    if (!fault && std::filesystem::is_directory(directory, fault)) return;
    const std::string reason = fault ? fault.message() : "a file of this name exists";
    std::fprintf(stderr, "make_problem: cannot create directory %s: %s\n", directory.c_str(),
                 reason.c_str());
    std::exit(1);
}

problem_files::Problem buildProblem(const problem_options::Options& options) {
    problem_files::Problem problem;
    problem.directory = options.directory;
    problem.prefix = options.prefix;
    problem.maximumSubRecordBytes = options.maximumSubRecordBytes;
    problem.suffixDigits = options.suffixDigits;
    problem.unitSystem = options.unitSystem;
    problem.olderGeneration = options.olderGeneration;
    problem.walls = options.walls;
    problem.mesh = problem_mesh::build(options.nx, options.ny, options.layers, options.prisms);
    problem.domains =
        problem_domains::build(problem.mesh, options.domains, options.sharing, options.walls);
    problem.species = options.species;
    problem.origins = options.origins;
    return problem;
}

void makeProblem(const problem_options::Options& options) {
    createDirectory(options.directory);
    if (options.origins) createDirectory(options.directory + "/hmc");
    problem_files::Problem problem = buildProblem(options);
    problem_files::writeDescription(problem);
    problem_files::writeMesh(problem);
    problem_weather::Weather weather = problem_weather::start(options.oneStorm);
    for (int index = 1; index <= options.times; ++index) {
        problem_weather::advance(weather, (index - 1.0) * options.step);
        for (const problem_variables::Variable& variable : options.variables)
            problem_files::writeResults(problem, variable, weather, index);
    }
    problem_observations::write(problem, weather,
                                {.count = options.observations,
                                 .waterTable = options.observedTable,
                                 .atNodes = options.sitesAtNodes});
    std::printf("%s: %d nodes, %d elements in pm; %lld files, %.1f MB\n", options.directory.c_str(),
                problem_mesh::nodeCount(problem.mesh), problem_mesh::elementCount(problem.mesh),
                static_cast<long long>(problem.files), static_cast<double>(problem.bytes) / 1.0e6);
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        makeProblem(problem_options::read(
            std::vector<std::string>(arguments + 1, arguments + argumentCount)));
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "make_problem: out of memory\n");
        return 1;
    }
    return 0;
}
