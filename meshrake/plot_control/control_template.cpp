#include "meshrake/plot_control/control_template.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_control/instruction_table.hpp"
#include "tvncommon/io/file_units.hpp"

namespace plot_control {

using model::Domain;
using model::run;

namespace {

void writeLine(const std::string& text) {
    file_units::writeLine(run.controlUnit, text);
}

void writeComment(std::string_view text) {
    writeLine("! " + std::string(text));
}

bool hasObservations(const InstructionRow& row) {
    return row.observations.empty() ||
           (file_units::exists(model::problemFile("head_pm." + model::outputTimeIndex(1))) &&
            file_units::exists(model::fileName(run.problemPrefix + std::string(row.observations))));
}

void writeInstruction(const InstructionRow& row, std::string_view tag) {
    writeLine((row.isActive ? "" : "! ") + instructionLine(row, tag));
    for (std::string_view values = row.exampleValues; !values.empty();) {
        const std::string_view first = values.substr(0, values.find('\n'));
        writeComment(first);
        values.remove_prefix(std::min(first.size() + 1, values.size()));
    }
}

void writeSection(Section section) {
    for (const InstructionRow& row : instructionTable())
        if (row.section == section) writeInstruction(row, "");
}

void writeBlock(const Domain& domain) {
    writeLine(domain.writeDomain.label);
    for (const model::OptionRow& row : model::optionTable)
        if (row.inTemplate & domain.tag) writeComment(model::optionOf(domain, row.option).label);
    for (const InstructionRow& row : instructionTable())
        if ((row.domains & domain.tag) && hasObservations(row)) writeInstruction(row, domain.name);
}

} // namespace

void writePlotControlInit() {
    writeSection(Section::first);
    writeLine("end");
}

void writePlotControl(const Domain& domain) {
    if (!domain.exists) return;
    if (domain.tag == model::tags::addition) {
        writeComment("Additional post-processing commands");
        writeSection(Section::afterFirst);
    } else {
        writeBlock(domain);
    }
    writeLine("end");
    writeLine("!" + std::string(45, '-'));
}

void writePlotControlEnd() {
    writeLine(std::string(timeSeriesLine));
    writeLine("end");
}

} // namespace plot_control
