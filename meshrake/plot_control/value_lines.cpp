#include "meshrake/plot_control/value_lines.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_control/control_source.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace plot_control {

using model::run;

namespace {

bool nextLine(std::string& line) {
    if (!run.controlSource) return file_units::readLine(run.controlUnit, line);
    return readControlLine(line) == io_layer::ok;
}

int readItems(std::initializer_list<free_form::Item> items) {
    return free_form::readItems(nextLine, std::span(items.begin(), items.size()));
}

} // namespace

void endRunUnreadable(int status) {
    error::input_error_stat(status, "Error reading " + run.problemPrefix + ".plot.control file");
}

void readValues(std::initializer_list<std::initializer_list<free_form::Item>> lines) {
    for (const auto& items : lines)
        if (const int status = readItems(items); status != io_layer::ok) endRunUnreadable(status);
}

void readOutputFileSuffix() {
    std::int32_t digits = run.suffixDigits;
    const int status = readItems({&digits});
    if (status != io_layer::ok)
        error::input_error_stat(status, "Error reading output file suffix length");
    if (digits < 4 || digits > 10)
        error::input_error("Output file suffix length must be between 4 and 10");
    run.suffixDigits = digits;
    run.suffixLength = digits + 1;
}

} // namespace plot_control
