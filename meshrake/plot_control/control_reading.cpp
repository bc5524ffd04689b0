#include "meshrake/plot_control/control_reading.hpp"

#include "meshrake/model/append_state.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_control/control_source.hpp"
#include "meshrake/plot_control/instruction_table.hpp"
#include "meshrake/plot_control/value_lines.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"

#include <algorithm>

namespace plot_control {

using model::Domain;
using model::run;

namespace {

struct Line {
    std::string typed;  // without trailing blanks
    std::string folded; // the same in lower case
};

// Reads the next line. Returns false at the end of the text.
bool nextLine(Line& line) {
    std::string raw;
    const int status = readControlLine(raw);
    if (status == io_layer::endOfFile) return false;
    if (status != io_layer::ok) endRunUnreadable(status);
    line.typed = StringHelpers::cut(raw, lineLimit);
    line.folded = line.typed;
    StringHelpers::lcase(line.folded);
    return true;
}

// Not called for an instruction, which may begin with these letters.
bool endsSection(const Line& line) {
    const bool ends = line.folded.starts_with("end");
    if (ends) noteUse(LineUse::sectionEnd);
    return ends;
}

void execute(const InstructionRow& instruction, Domain* domain) {
    noteUse(LineUse::instruction);
    instruction.execute(domain);
    noteValuesRead();
}

void echoInstruction(std::string_view text) {
    model::writeEcho("");
    model::writeEcho("INSTRUCTION: " + std::string(text));
}

void reportUnrecognized(const Line& line) {
    noteUse(LineUse::unrecognized);
    for (const auto& write : {model::writeEcho, model::writeScreen}) {
        write("Plot control - Unrecognized line");
        write(line.folded);
        write("");
    }
}

// Returns null for a line that is not an instruction of this section. `domain` is that of a block.
const InstructionRow* findInstruction(Section section, const Line& line,
                                      const Domain* domain = nullptr) {
    const auto matches = [&](const InstructionRow& row) {
        if (row.section != section) return false;
        if (section != Section::domainBlock) return row.words == line.folded;
        return (row.domains & domain->tag) && instructionLine(row, domain->name) == line.folded;
    };
    const auto table = instructionTable();
    const auto it = std::find_if(table.begin(), table.end(), matches);
    return it == table.end() ? nullptr : &*it;
}

// Returns false if the line is not that of an option.
bool disableOption(Domain& domain, const Line& line) {
    for (const model::OptionRow& row : model::optionTable) {
        if (row.cleared == model::Option::none) continue;
        if (model::optionOf(domain, row.option).label != line.folded) continue;
        model::optionOf(domain, row.cleared).enabled = false;
        noteUse(LineUse::option);
        return true;
    }
    return false;
}

void readAfterFirstSection(Domain& addition) {
    for (Line line; nextLine(line);) {
        const InstructionRow* instruction = findInstruction(Section::afterFirst, line);
        if (!instruction) continue;
        echoInstruction(line.folded);
        execute(*instruction, &addition);
    }
}

void readBlock(Domain& domain) {
    for (Line line; nextLine(line);) {
        echoInstruction(line.typed);
        if (disableOption(domain, line)) continue;
        if (const auto* instruction = findInstruction(Section::domainBlock, line, &domain))
            execute(*instruction, &domain);
        else if (endsSection(line))
            return;
        else
            reportUnrecognized(line);
    }
}

} // namespace

void readRest(Domain& domain) {
    if (domain.tag == model::tags::addition)
        readAfterFirstSection(domain);
    else
        readBlock(domain);
}

void readPlotControlInit() {
    for (Line line; nextLine(line);) {
        echoInstruction(line.typed);
        if (const InstructionRow* instruction = findInstruction(Section::first, line)) {
            execute(*instruction, nullptr);
        } else if (endsSection(line)) {
            // Only binary data sets can be resumed.
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
    rewindControl();
    Line line;
    do {
        if (!nextLine(line)) return;
    } while (!endsSection(line));
    if (domain.tag == model::tags::addition) return readRest(domain);
    do {
        if (!nextLine(line)) return;
    } while (line.folded != domain.writeDomain.label);
    domain.writeDomain.enabled = true;
    noteUse(LineUse::blockBegin);
    echoInstruction(domain.writeDomain.label);
    readRest(domain);
}

} // namespace plot_control
