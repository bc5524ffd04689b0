#include "companion/check/check.hpp"

#include <nlohmann/json.hpp>

namespace check {

namespace {

using Json = nlohmann::ordered_json;

Json jsonOf(const VariableReport& variable) {
    Json states = Json::array();
    for (const CellState state : variable.cells) states.push_back(wordOf(state).key);
    return {{"names", variable.names},
            {"file", variable.file},
            {"type", variable.type},
            {"location", variable.ofElements ? "element" : "node"},
            {"states", std::move(states)}};
}

Json jsonOf(const DomainReport& domain) {
    Json variables = Json::array();
    for (const VariableReport& variable : domain.variables) variables.push_back(jsonOf(variable));
    return {{"domain", domain.tag},
            {"own_nodes", domain.ownNodes},
            {"written", domain.isWritten},
            {"remark", domain.remark},
            {"nodes", domain.nodes},
            {"elements", domain.elements},
            {"element_shape", domain.elementShape},
            {"plot_file", domain.dataSet},
            {"written_nodes", domain.writtenNodes},
            {"written_elements", domain.writtenElements},
            {"output_times", domain.zones},
            {"bytes", domain.bytes},
            {"bytes_exact", domain.bytesAreExact},
            {"variables", std::move(variables)}};
}

Json jsonOf(const PlotReport& plot) {
    return {{"plot_file", plot.file},
            {"nodes", plot.nodes},
            {"elements", plot.elements},
            {"zones", plot.zones},
            {"bytes", plot.bytes}};
}

Json jsonOf(const TimeReport& time) {
    return {{"index", time.index},
            {"suffix", time.suffix},
            {"time", time.text},
            {"file", time.file},
            {"written", time.isWritten}};
}

Json jsonOf(const Finding& finding) {
    return {{"kind", finding.kind},   {"file", finding.file}, {"line", finding.line},
            {"times", finding.times}, {"text", finding.text}, {"ends_run", finding.endsRun}};
}

template<class Entry>
Json listOf(const std::vector<Entry>& entries) {
    Json list = Json::array();
    for (const Entry& entry : entries) list.push_back(jsonOf(entry));
    return list;
}

} // namespace

// Names in files may have any bytes: what is not UTF-8 is replaced, and only ASCII is written.
std::string jsonOf(const Report& report) {
    Json selections = Json::array();
    for (const Selection& selection : report.selections) selections.push_back(selection.text);
    const Json json = {{"folder", report.folder},
                       {"prefix", report.prefix},
                       {"title", report.title},
                       {"control_file", report.controlFile},
                       {"selections", std::move(selections)},
                       {"times", listOf(report.times)},
                       {"domains", listOf(report.domains)},
                       {"plots", listOf(report.plots)},
                       {"unread_files", report.unreadFiles},
                       {"bytes_needed", report.bytesNeeded},
                       {"bytes_free", report.bytesFree},
                       {"findings", listOf(report.findings)}};
    return json.dump(2, ' ', true, Json::error_handler_t::replace) + "\n";
}

} // namespace check
