#include "meshrake/plot_control/control_template.hpp"

#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/number_formats.hpp"

namespace plot_control {

using model::Domain;
using model::run;

namespace {

void line(const std::string& text) {
    file_units::writeLine(run.controlUnit, text);
}

void comment(const std::string& text) {
    line("! " + text);
}

void boundsLine(const Domain& domain, std::size_t first) {
    comment(number_formats::exponentField(domain.truncateBounds[first], 12, 5) +
            number_formats::exponentField(domain.truncateBounds[first + 1], 12, 5));
}

void truncationLines(const Domain& domain) {
    comment(domain.truncateDomain);
    for (std::size_t i = 0; i < 6; i += 2) boundsLine(domain, i);
    comment(domain.truncateByLayer);
    for (std::size_t i = 0; i < 4; i += 2) boundsLine(domain, i);
    comment(number_formats::integerField(domain.truncateLayers[0], 12) +
            number_formats::integerField(domain.truncateLayers[1], 12));
}

void unboundedWindow() {
    for (int i = 0; i < 3; ++i) comment("-1.0E+20  1.0E+20");
}

// A comparison is offered where there is something to compare.
void pmComparisonLines() {
    if (!file_units::exists(model::problemFile("head_pm." + model::outputTimeIndex(1)))) return;
    if (file_units::exists(model::fileName(run.problemPrefix + ".observed_heads"))) {
        comment("compare heads 3d domain");
        unboundedWindow();
        comment("compare gw table elevation");
    }
    if (file_units::exists(model::fileName(run.problemPrefix + ".observed_d2gwt")))
        comment("compare depth to gw table");
}

void domainLines(const Domain& domain) {
    line(domain.writeDomain.label);
    for (const model::OptionRow& row : model::optionTable)
        if (row.inTemplate & domain.tag) comment(model::optionOf(domain, row.option).label);
    truncationLines(domain);
    if (domain.tag == model::tags::pm) pmComparisonLines();
    if (domain.tag != model::tags::olf) return;
    comment("compare surface water depth");
    unboundedWindow();
}

void additionLines() {
    comment("Additional post-processing commands");
    comment("simulation time unit conversion factor");
    comment("0.0  1.0");
    comment("plot pm zone isopach structure");
    comment("plot pm depth below ground surface");
    comment("interpolate depth to gw table");
}

} // namespace

void writePlotControlInit() {
    for (const char* text :
         {"tecplot mode", "! tecplot binary mode", "! tecplot binary flush interval", "! 1",
          "! tecplot binary append", "! truncate time domain", "! 0.0  1.0E+20",
          "! number of digits for output file suffix", "! 4", "end"})
        line(text);
}

void writePlotControl(const Domain& domain) {
    if (!domain.exists) return;
    if (domain.tag == model::tags::addition)
        additionLines();
    else
        domainLines(domain);
    line("end");
    line("!" + std::string(45, '-'));
}

void writePlotControlEnd() {
    line("write time series file");
    line("end");
}

} // namespace plot_control
