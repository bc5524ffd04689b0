#include "companion/check/forecast.hpp"

#include "companion/check/measuring_writer.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/free_form.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace check {

using model::Domain;
using model::run;

namespace {

// In the order of the codes of model::DataType, from 1.
constexpr std::string_view typeNames[] = {"real4", "real8", "int4"};

std::vector<std::int32_t> missingTimes(const Work& work, const VariableReport& variable) {
    std::vector<std::int32_t> times;
    for (std::size_t t = 0; t < variable.cells.size(); ++t)
        if (variable.cells[t] == CellState::missing) times.push_back(work.report.times[t].index);
    return times;
}

// An output time without a file shares the values of zone 1, in a run that appends too.
void reportMissing(Work& work, const DomainReport& domain, const VariableReport& variable) {
    const std::vector<std::int32_t> times = missingTimes(work, variable);
    if (times.empty() || variable.file.empty()) return;
    const auto first = std::ranges::find(work.report.times, true, &TimeReport::isWritten);
    const std::string shown =
        run.tecplotAppend ? "time 1 of the data set" : "time " + first->suffix;
    work.report.findings.push_back({.kind = "missing_file",
                                    .file = variable.file,
                                    .times = times,
                                    .text = "no file, so " + domain.tag + " would show " +
                                            joined(variable.names) + " of " + shown});
}

// Neighbouring columns of one variable with the same states are one entry.
void addVariables(DomainReport& domain, const DomainTrack& track) {
    const ColumnTrack* previous = nullptr;
    for (const ColumnTrack& column : track.columns) {
        const bool isSame = previous && previous->row == column.row &&
                            previous->cells == column.cells && previous->type == column.type &&
                            previous->location == column.location;
        previous = &column;
        if (isSame) {
            domain.variables.back().names.push_back(column.name);
            continue;
        }
        domain.variables.push_back(
            {{column.name},
             track.files[column.row],
             std::string(typeNames[static_cast<std::size_t>(column.type) - 1]),
             column.location == model::Location::element,
             column.cells});
    }
}

DomainReport descriptionOf(const Domain& domain) {
    DomainReport report;
    report.tag = domain.name;
    report.ownNodes = model::hasOwnNodes(domain);
    report.isWritten = domain.writeDomain.enabled;
    report.nodes = domain.nodeCount;
    report.elements = domain.elementCount;
    report.elementShape = domain.zoneType;
    if (!report.isWritten)
        report.remark = model::isReadButNotWritten(domain)
                            ? "not written, only read for domains that share its nodes"
                            : "not written, the control file has no block for it";
    return report;
}

void addDataSet(DomainReport& report, const DomainTrack& track) {
    const Domain& domain = *track.domain;
    report.writtenNodes = domain.nnTruncated;
    report.writtenElements = domain.neTruncated;
    addVariables(report, track);
    if (!report.isWritten) return;
    report.dataSet = model::problemFile(domain.name) + std::string(plot_data::plotFileExtension());
    report.zones = measureOf(domain).zones;
    report.bytesAreExact = finishMeasure(domain, report.bytes);
}

// NaN for a time that is not a finite number.
double numberOf(const TimeReport& time) {
    double number = 0;
    const bool isNumber = free_form::readReal(time.text, number) == io_layer::ok;
    return isNumber && std::isfinite(number) ? number : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

void reportDomains(Work& work, const std::vector<DomainTrack>& tracks) {
    std::vector<DomainReport> domains;
    for (const Domain* domain : run::processingOrder(work.domains)) {
        if (!domain->exists) continue;
        DomainReport& report = domains.emplace_back(descriptionOf(*domain));
        const auto track = std::ranges::find(tracks, domain, &DomainTrack::domain);
        if (track == tracks.end() || !track->isOpen) continue;
        addDataSet(report, *track);
        for (const VariableReport& variable : report.variables)
            reportMissing(work, report, variable);
        if (report.isWritten && measureOf(*domain).zoneLineIsCut)
            work.report.findings.push_back(
                {.kind = "zone_line_cut",
                 .file = report.dataSet,
                 .text = "the zone lines are longer than 512 characters and are cut, so the file "
                         "cannot be read; a binary data set has no such limit"});
        work.report.bytesNeeded += report.bytes;
    }
    std::ranges::move(work.report.domains, std::back_inserter(domains)); // damaged ones
    work.report.domains = std::move(domains);
}

void checkTimes(Work& work) {
    const std::vector<TimeReport>& times = work.report.times;
    for (std::size_t t = 0; t < times.size(); ++t) {
        const auto add = [&](std::string_view kind, const std::string& fault) {
            work.report.findings.push_back({.kind = kind,
                                            .file = times[t].file,
                                            .times = {times[t].index},
                                            .text = "the time " + times[t].text + fault});
        };
        const double time = numberOf(times[t]);
        // The pass over a binary data set has reported its time.
        if (std::isnan(time) && !run.tecplotBinary && times[t].text != unknownTime)
            add("invalid_time", " is not a number, but would be written into the plot files");
        if (t > 0 && time <= numberOf(times[t - 1]))
            add("time_order", " is not after that of the output time before, " + times[t - 1].text);
    }
    if (times.empty() || std::ranges::any_of(times, &TimeReport::isWritten)) return;
    Finding finding{.kind = "empty_time_window",
                    .text = "no output time is in this time window, so no plot file is written"};
    if (const auto line = work.requestLines.find("truncate time domain");
        line != work.requestLines.end()) {
        finding.file = line->second.file;
        finding.line = line->second.number;
    }
    work.report.findings.push_back(std::move(finding));
}

} // namespace check
