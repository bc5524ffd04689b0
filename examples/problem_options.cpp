#include "examples/problem_options.hpp"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <system_error>
#include <utility>

#include "examples/record_file.hpp"

namespace problem_options {

namespace {

[[noreturn]] void usageError(const std::string& text) {
    std::fprintf(stderr, "make_problem: %s\nTry 'make_problem --help'.\n", text.c_str());
    std::exit(2);
}

struct Row {
    const char* name;
    const char* value; // name of the value in the help, empty for a switch
    const char* help;
    void (*apply)(Options&, const std::string& name, const std::string& value);
};

std::int32_t number(const std::string& name, const std::string& value, std::int32_t lowest,
                    std::int32_t highest) {
    std::int32_t result = 0;
    const char* end = value.data() + value.size();
    const auto [stop, fault] = std::from_chars(value.data(), end, result);
    if (fault != std::errc() || stop != end || result < lowest || result > highest)
        usageError(name + " needs a whole number from " + std::to_string(lowest) + " to " +
                   std::to_string(highest) + ", not \"" + value + "\"");
    return result;
}

// Returns true for the second of two permitted words, false for the first.
bool second(const std::string& name, const std::string& value, const char* firstWord,
            const char* secondWord) {
    if (value == secondWord) return true;
    if (value != firstWord)
        usageError(name + " needs " + firstWord + " or " + secondWord + ", not \"" + value + "\"");
    return false;
}

problem_domains::TagSet domainSet(const std::string& name, const std::string& value) {
    problem_domains::TagSet set = 0;
    std::istringstream list(value);
    for (std::string word; std::getline(list, word, ',');) {
        const auto& names = problem_domains::names;
        const auto found = std::find(names.begin(), names.end(), word);
        if (found == names.end()) usageError(name + ": no domain \"" + word + "\"");
        set |= problem_domains::bit(static_cast<problem_domains::Tag>(found - names.begin()));
    }
    return set;
}

problem_domains::TagSet sharingSet(const std::string& name, const std::string& value) {
    using problem_domains::bit;
    using problem_domains::Tag;
    if (value == "multi") return 0;
    if (value == "common") return ~problem_domains::TagSet{0};
    if (value == "mixed") return bit(Tag::olf) | bit(Tag::frac) | bit(Tag::well);
    return domainSet(name, value);
}

constexpr std::int32_t maximumCells = 1 << 20;

const Row rows[] = {
    {"--prefix", "NAME", "prefix of the file names (catchment)",
     [](Options& options, const std::string& name, const std::string& value) {
         if (value.empty() || value.find_first_of("/\\ \t\r\n") != std::string::npos)
             usageError(name + " needs a name without blanks and slashes");
         options.prefix = value;
     }},
    {"--nx", "CELLS", "cells of the plan along the valley (24)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.nx = number(name, value, 2, maximumCells);
     }},
    {"--ny", "CELLS", "cells of the plan across the valley (16)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.ny = number(name, value, 2, maximumCells);
     }},
    {"--layers", "N", "layers of elements, thinner towards the surface (6)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.layers = number(name, value, 1, 10000);
     }},
    {"--times", "N", "output times (6)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.times = number(name, value, 1, 1000000000);
     }},
    {"--step", "SECONDS", "time between output times (3600)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.step = number(name, value, 1, 1000000000);
     }},
    {"--storm", "", "one storm, which washes solutes off a field, then no more rain",
     [](Options& options, const std::string&, const std::string&) { options.oneStorm = true; }},
    {"--elements", "KIND", "brick, or prism: every quad of the plan cut in two (brick)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.prisms = second(name, value, "brick", "prism");
     }},
    {"--domains", "LIST", "of pm,dual,olf,frac,chan,well,tile; pm is always included (pm,olf)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.domains = domainSet(name, value);
     }},
    {"--coupling", "KIND", "multi, common, mixed, or the domains that share pm's nodes (multi)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.sharing = sharingSet(name, value);
     }},
    {"--species", "LIST", "such as Nitrate,Heat:heat,Virus:particles,Calcite:immobile,8 (none)",
     [](Options& options, const std::string& name, const std::string& value) {
         problem_species::Reading reading = problem_species::read(value);
         if (reading.fault) usageError(name + ": " + *reading.fault);
         options.species = std::move(reading.species);
     }},
    {"--hmc", "N", "origins of water with fractions of the mixture (no such files)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.origins = problem_species::origins(number(name, value, 0, 1000));
     }},
    {"--variables", "LIST", "default, all, or variables from the list below (default)",
     [](Options& options, const std::string&, const std::string& value) {
         options.variableWords = value;
     }},
    {"--tensor", "", "conductivity of elements as a full tensor",
     [](Options& options, const std::string&, const std::string&) { options.fullTensor = true; }},
    {"--walls", "", "double the nodes of olf along a cutoff wall",
     [](Options& options, const std::string&, const std::string&) { options.walls = true; }},
    {"--units", "HANDLE", "unit system, 0 to 9: metres to 4, then centimetres (0, m and s)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.unitSystem = number(name, value, 0, 9);
     }},
    {"--generation", "AGE", "of the result files: newer or older (newer)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.olderGeneration = second(name, value, "newer", "older");
     }},
    {"--sub-records", "BYTES", "split records that are longer (2147483639)",
     [](Options& options, const std::string& name, const std::string& value) {
         const auto maximum = static_cast<std::int32_t>(record_file::defaultSubRecordBytes);
         options.maximumSubRecordBytes =
             static_cast<std::uint32_t>(number(name, value, 1, maximum));
     }},
    {"--observations", "N", "field measurements of each kind at the last time (24)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.observations = number(name, value, 0, 100000000);
     }},
    {"--observed", "KIND", "heads in the ground, or elevations of the water table (heads)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.observedTable = second(name, value, "heads", "table");
     }},
    {"--sites", "KIND", "of the measurements: mixed, some outside the mesh, or nodes (mixed)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.sitesAtNodes = second(name, value, "mixed", "nodes");
     }},
    {"--digits", "N", "digits of the time index in file names, 4 to 10 (4)",
     [](Options& options, const std::string& name, const std::string& value) {
         options.suffixDigits = number(name, value, 4, 10);
     }},
};

void printHelp() {
    std::printf("Usage: make_problem [options] DIRECTORY\n\n"
                "Writes the files of a sample problem, as the simulator writes them, into\n"
                "DIRECTORY, which is created. Files of the same name are replaced, other files\n"
                "remain. The same options always give the same bytes.\n\n");
    for (const Row& row : rows) {
        const std::string left = std::string(row.name) + " " + row.value;
        std::printf("  %-20s %s\n", left.c_str(), row.help);
    }
    std::printf("  %-20s %s\n\n", "--help", "print this text");
    std::printf("A species is a name and, after colons, its kinds: heat, particles, immobile. A\n"
                "number instead of a name gives that many solutes.\n\nVariables:\n");
    std::string line;
    for (const std::string& stem : problem_variables::stems()) {
        if (line.size() + stem.size() > 78) {
            std::printf("%s\n", line.c_str());
            line.clear();
        }
        line += line.empty() ? "  " : " ";
        line += stem;
    }
    std::printf("%s\n", line.c_str());
}

// Numbers of nodes, elements and global nodes have 32 bits in the files.
void checkSize(const Options& options) {
    const double columns = (options.nx + 1.0) * (options.ny + 1.0);
    const double nodes = columns * (options.layers + 1.0);
    if (nodes > 5.0e8)
        usageError("the mesh would have more than 500 million nodes: take fewer cells or layers");
}

void checkTimes(const Options& options) {
    const std::string last = std::to_string(options.times);
    if (last.size() > static_cast<std::size_t>(options.suffixDigits))
        usageError("--times " + last + " needs --digits " + std::to_string(last.size()));
}

// A wall doubles nodes of olf only. An olf that shares the nodes of pm cannot have doubled nodes.
void checkWalls(const Options& options) {
    using problem_domains::bit;
    using problem_domains::Tag;
    if (options.walls && (options.sharing & bit(Tag::olf)) != 0)
        usageError("--walls needs an olf with nodes of its own: change --coupling");
}

void selectVariables(Options& options) {
    const problem_variables::ProblemContents contents = {
        options.fullTensor, !options.species.empty(), options.origins.has_value()};
    problem_variables::Selection selection =
        problem_variables::select(options.variableWords, contents);
    if (selection.unknown) usageError("--variables: no variable \"" + *selection.unknown + "\"");
    if (selection.unavailable)
        usageError("--variables: " + *selection.unavailable + " needs " +
                   (*selection.unavailable == "hmc" ? "--hmc" : "--species"));
    if (selection.variables.empty()) usageError("--variables needs at least one variable");
    options.variables = std::move(selection.variables);
}

void apply(Options& options, const std::vector<std::string>& arguments, std::size_t& position) {
    const std::string& argument = arguments[position];
    const std::size_t equals = argument.find('=');
    const std::string name = argument.substr(0, equals);
    const Row* row = std::find_if(std::begin(rows), std::end(rows),
                                  [&name](const Row& candidate) { return name == candidate.name; });
    if (row == std::end(rows)) usageError("unknown option " + name);
    const bool isSwitch = *row->value == '\0';
    if (isSwitch && equals != std::string::npos) usageError(name + " takes no value");
    std::string value;
    if (equals != std::string::npos) {
        value = argument.substr(equals + 1);
    } else if (!isSwitch) {
        if (++position == arguments.size()) usageError(name + " needs a value");
        value = arguments[position];
    }
    row->apply(options, name, value);
}

} // namespace

Options read(const std::vector<std::string>& arguments) {
    Options options;
    options.domains = problem_domains::bit(problem_domains::Tag::olf);
    options.maximumSubRecordBytes = record_file::defaultSubRecordBytes;
    for (std::size_t position = 0; position < arguments.size(); ++position) {
        const std::string& argument = arguments[position];
        if (argument == "--help") {
            printHelp();
            std::exit(0);
        }
        if (argument.substr(0, 2) == "--") {
            apply(options, arguments, position);
        } else if (options.directory.empty() && !argument.empty()) {
            options.directory = argument;
        } else {
            usageError("unexpected argument \"" + argument + "\"");
        }
    }
    if (options.directory.empty()) usageError("no directory given");
    checkSize(options);
    checkTimes(options);
    checkWalls(options);
    selectVariables(options);
    return options;
}

} // namespace problem_options
