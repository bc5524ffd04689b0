#include "meshrake/plot_control/control_template.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_control/instruction_table.hpp"
#include "tvncommon/io/file_units.hpp"

namespace plot_control {

using model::Domain;
using model::run;

namespace {

void line(const std::string& text) {
    file_units::writeLine(run.controlUnit, text);
}

void comment(std::string_view text) {
    line("! " + std::string(text));
}

bool hasObservations(const InstructionRow& row) {
    return row.observations.empty() ||
           (file_units::exists(model::problemFile("head_pm." + model::outputTimeIndex(1))) &&
            file_units::exists(model::fileName(run.problemPrefix + std::string(row.observations))));
}

void instructionLines(const InstructionRow& row, std::string_view tag) {
    line((row.isActive ? "" : "! ") + instructionLine(row, tag));
    for (std::string_view values = row.exampleValues; !values.empty();) {
        const std::string_view first = values.substr(0, values.find('\n'));
        comment(first);
        values.remove_prefix(std::min(first.size() + 1, values.size()));
    }
}

void sectionLines(Section section) {
    for (const InstructionRow& row : instructionTable())
        if (row.section == section) instructionLines(row, "");
}

void blockLines(const Domain& domain) {
    line(domain.writeDomain.label);
    for (const model::OptionRow& row : model::optionTable)
        if (row.inTemplate & domain.tag) comment(model::optionOf(domain, row.option).label);
    for (const InstructionRow& row : instructionTable())
        if ((row.domains & domain.tag) && hasObservations(row)) instructionLines(row, domain.name);
}

} // namespace

void writePlotControlInit() {
    sectionLines(Section::first);
    line("end");
}

void writePlotControl(const Domain& domain) {
    if (!domain.exists) return;
    if (domain.tag == model::tags::addition) {
        comment("Additional post-processing commands");
        sectionLines(Section::afterFirst);
    } else {
        blockLines(domain);
    }
    line("end");
    line("!" + std::string(45, '-'));
}

void writePlotControlEnd() {
    line("write time series file");
    line("end");
}

} // namespace plot_control
