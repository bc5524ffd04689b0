#include "meshrake/plot_control/control_reading.hpp"

#include "meshrake/model/append_state.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"

#include <algorithm>
#include <array>

namespace plot_control {

using model::Domain;
using model::run;

namespace {

constexpr std::size_t lineLimit = 60;

struct Line {
    std::string typed;  // trailing blanks dropped
    std::string folded; // the same in lower case
};

[[noreturn]] void badText(int status) {
    error::input_error_stat(status, "Error reading " + run.problemPrefix + ".plot.control file");
}

// False at the end of the text.
bool nextLine(Line& line) {
    std::string raw;
    const int status = io_layer::readLine(run.controlUnit, raw);
    if (status == io_layer::endOfFile) return false;
    if (status != io_layer::ok) badText(status);
    line.typed = StringHelpers::cut(raw, lineLimit);
    line.folded = line.typed;
    StringHelpers::lcase(line.folded);
    return true;
}

bool endsSection(const Line& line) {
    return line.folded.starts_with("end");
}

void echoInstruction(std::string_view text) {
    model::writeEcho("");
    model::writeEcho("INSTRUCTION: " + std::string(text));
}

void reportUnrecognized(const Line& line) {
    for (const auto& write : {model::writeEcho, model::writeScreen}) {
        write("Plot control - Unrecognized line");
        write(line.folded);
        write("");
    }
}

bool nextValueLine(std::string& line) {
    return file_units::readLine(run.controlUnit, line);
}

void readValues(std::span<const free_form::Item> items) {
    const int status = free_form::readItems(nextValueLine, items);
    if (status != io_layer::ok) badText(status);
}

void readPair(double& first, double& second) {
    readValues(std::array<free_form::Item, 2>{&first, &second});
}

// Three lines: the ranges of x, y and z.
void readRanges(std::array<double, 6>& ranges) {
    for (std::size_t i = 0; i < ranges.size(); i += 2) readPair(ranges[i], ranges[i + 1]);
}

void readFlushInterval() {
    readValues(std::array<free_form::Item, 1>{&run.tecplotFlushInterval});
    run.tecplotFlushInterval = std::max(run.tecplotFlushInterval, 1);
}

void readTimeWindow() {
    readPair(run.timeWindowMin, run.timeWindowMax);
    run.truncateTime = true;
}

void readTimeConversion() {
    readPair(run.timeUnitOffset, run.timeUnitFactor);
    run.timeConversion = true;
}

struct Instruction {
    std::string_view line;
    void (*act)();
};

constexpr Instruction topLevelInstructions[] = {
    {"tecplot mode", [] { run.tecplotMode = true; }},
    {"tecplot binary mode", [] { run.tecplotBinary = true; }},
    {"tecplot binary flush interval", readFlushInterval},
    {"tecplot binary append", [] { run.tecplotAppend = true; }},
    {"truncate time domain", readTimeWindow},
    {"number of digits for output file suffix", readOutputFileSuffix},
};

constexpr Instruction additionInstructions[] = {
    {"simulation time unit conversion factor", readTimeConversion},
    {"plot pm zone isopach structure", [] { run.plotIsopach = true; }},
    {"plot pm depth below ground surface", [] { run.plotDepthBelowSurface = true; }},
    {"interpolate depth to gw table", [] { run.interpolateDepthToTable = true; }},
};

// Instructions of a block that ask for a comparison at the end of the run, with the only domain in
// whose block they count.
struct CompareInstruction {
    std::string_view line;
    model::DomainSet domain;
    void (*act)();
};

constexpr CompareInstruction compareInstructions[] = {
    {"compare heads 3d domain", model::tags::pm,
     [] {
         readRanges(run.compareWindow);
         run.compareHeads = true;
     }},
    {"compare gw table elevation", model::tags::pm, [] { run.compareWaterTable = true; }},
    {"compare depth to gw table", model::tags::pm, [] { run.compareDepthToTable = true; }},
    {"compare surface water depth", model::tags::olf,
     [] {
         readRanges(run.compareWindow);
         run.compareSurfaceDepth = true;
     }},
};

const Instruction* findInstruction(std::span<const Instruction> instructions, const Line& line) {
    const auto it = std::find_if(instructions.begin(), instructions.end(),
                                 [&](const Instruction& i) { return i.line == line.folded; });
    return it == instructions.end() ? nullptr : &*it;
}

bool switchOff(Domain& domain, const Line& line) {
    for (const model::OptionRow& row : model::optionTable) {
        if (row.cleared == model::Option::none) continue;
        if (model::optionOf(domain, row.option).label != line.folded) continue;
        model::optionOf(domain, row.cleared).enabled = false;
        return true;
    }
    return false;
}

bool readTruncation(Domain& domain, const Line& line) {
    if (line.folded == domain.truncateDomain) {
        readRanges(domain.truncateBounds);
        domain.truncateEnabled = true;
        return true;
    }
    if (line.folded != domain.truncateByLayer) return false;
    for (std::size_t i = 0; i < 4; i += 2)
        readPair(domain.truncateBounds[i], domain.truncateBounds[i + 1]);
    readValues(
        std::array<free_form::Item, 2>{&domain.truncateLayers[0], &domain.truncateLayers[1]});
    domain.truncateByLayerEnabled = true;
    return true;
}

bool readComparison(const Domain& domain, const Line& line) {
    for (const CompareInstruction& i : compareInstructions) {
        if (i.line != line.folded || i.domain != domain.tag) continue;
        i.act();
        return true;
    }
    return false;
}

void readAddition() {
    for (Line line; nextLine(line);) {
        const Instruction* instruction = findInstruction(additionInstructions, line);
        if (!instruction) continue;
        echoInstruction(line.folded);
        instruction->act();
    }
}

void readBlock(Domain& domain) {
    for (Line line; nextLine(line);) {
        echoInstruction(line.typed);
        if (switchOff(domain, line) || readTruncation(domain, line) || readComparison(domain, line))
            continue;
        if (endsSection(line)) return;
        reportUnrecognized(line);
    }
}

} // namespace

void readOutputFileSuffix() {
    std::int32_t digits = run.suffixDigits;
    const std::array<free_form::Item, 1> items{&digits};
    const int status = free_form::readItems(nextValueLine, items);
    if (status != io_layer::ok)
        error::input_error_stat(status, "Error reading output file suffix length");
    if (digits < 4 || digits > 10)
        error::input_error("Output file suffix length must be between 4 and 10");
    run.suffixDigits = digits;
    run.suffixLength = digits + 1;
}

void readPlotControlInit() {
    for (Line line; nextLine(line);) {
        echoInstruction(line.typed);
        const Instruction* instruction = findInstruction(topLevelInstructions, line);
        if (instruction) {
            instruction->act();
        } else if (endsSection(line)) {
            // Only a binary file can be continued.
            run.tecplotAppend = run.tecplotAppend && run.tecplotBinary;
            if (run.tecplotAppend) model::initTecplotAppend();
            return;
        } else {
            reportUnrecognized(line);
        }
    }
}

void readPlotControl(Domain& domain) {
    domain.writeDomain.enabled = false;
    if (!domain.exists) return;
    file_units::rewind(run.controlUnit);
    Line line;
    do {
        if (!nextLine(line)) return;
    } while (!endsSection(line));
    if (domain.tag == model::tags::addition) return readAddition();
    do {
        if (!nextLine(line)) return;
    } while (line.folded != domain.writeDomain.label);
    domain.writeDomain.enabled = true;
    echoInstruction(domain.writeDomain.label);
    readBlock(domain);
}

} // namespace plot_control
