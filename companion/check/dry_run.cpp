#include "companion/check/dry_run.hpp"

#include "companion/check/measuring_writer.hpp"
#include "companion/check/result_file.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/run/time_loop.hpp"
#include "meshrake/variables/passes.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"

#include <algorithm>
#include <map>

namespace check {

using model::Domain;
using model::run;
using plot_data::ResultFile;
using plot_data::VariableRow;

namespace {

// What the callback of the reader needs; it has no other argument.
struct Current {
    Work* work = nullptr;
    DomainTrack* track = nullptr;
    std::size_t row = 0;
    std::string timeStamp; // of the output time, as in its file; empty if it is not known
    // Other time stamps of files of the output time, with the files that have them.
    std::map<std::string, std::vector<std::string>> otherStamps;
    std::map<std::int32_t, CellState> cells; // of the row, by number of the variable
    std::map<std::string, CellState> testedAtThisTime;
    bool isProbe = false; // files are only noted
    std::vector<std::string> probed;
};
Current current;

bool isOfThisTime(const std::string& file) {
    return file.ends_with("." + run.timeSuffix);
}

void addFaults(const std::string& file, const std::vector<FileFault>& faults) {
    const bool isReported = run.currentTimeText == unknownTime && file == run.timeFile;
    for (const FileFault& fault : faults)
        if (!isReported || fault.state != CellState::malformed)
            current.work->report.findings.push_back({.kind = fault.kind,
                                                     .file = file,
                                                     .times = {run.timeIndex},
                                                     .text = fault.text,
                                                     .endsRun = fault.endsRun});
}

bool isSameTime(const std::string& a, const std::string& b) {
    double first = 0, second = 0;
    const bool areNumbers = free_form::readReal(a, first) == io_layer::ok &&
                            free_form::readReal(b, second) == io_layer::ok;
    return a == b || (areNumbers && first == second);
}

CellState test(const ResultFile& file) {
    const VariableRow& row = variables::tableOf(*current.track->domain)[current.row];
    const bool everyTime = row.timing == plot_data::Timing::everyTime;
    const bool isFallback = everyTime && !isOfThisTime(file.name);
    const FileTest result = testResultFile(file);
    addFaults(file.name, result.faults);
    if (everyTime && !isFallback && !result.timeStamp.empty() && !current.timeStamp.empty() &&
        !isSameTime(result.timeStamp, current.timeStamp))
        current.otherStamps[result.timeStamp].push_back(file.name);
    if (!result.faults.empty()) return result.faults.front().state;
    return isFallback ? CellState::missing : CellState::present;
}

void testFile(const ResultFile& file) {
    if (current.isProbe) return current.probed.push_back(file.name);
    current.work->tested.insert(file.name);
    auto [entry, isNew] = current.testedAtThisTime.try_emplace(file.name, CellState::present);
    if (isNew) entry->second = test(file);
    current.cells[file.varNumber] = entry->second;
    current.track->files[current.row] = withoutIndex(file.name);
}

constexpr plot_data::DryRun dryRun{testFile};

// Runs a step of one row of the table.
void rowStep(Work& work, DomainTrack& track, std::size_t row,
             void (*step)(Domain& domain, std::size_t i)) {
    current.track = &track;
    current.row = row;
    current.cells.clear();
    tryStep(work, {.kind = "variable", .times = {run.timeIndex}},
            [&] { step(*track.domain, row); });
}

// State of a column with values at this output time. A column that is computed from the file of its
// row has the state of that file. Without a file, columns are of the mesh, or computed from other
// variables.
CellState stateOf(std::int32_t varNumber, const VariableRow& row) {
    if (const auto own = current.cells.find(varNumber); own != current.cells.end())
        return own->second;
    if (!current.cells.empty()) return current.cells.begin()->second;
    const bool isOfMesh = row.read == plot_data::constantRead || !row.stem.empty();
    return isOfMesh ? CellState::constant : CellState::present;
}

void addCell(ColumnTrack& column, CellState state, std::size_t times) {
    column.cells.resize(times, CellState::notRead);
    if (times > 0) column.cells.back() = state;
}

void addColumns(Work& work, DomainTrack& track, std::size_t row) {
    const model::OutputVar& var = track.domain->outputVars[row];
    track.declared[row] = var.firstExists;
    const auto table = variables::tableOf(*track.domain);
    const std::vector<std::string>& names = measureOf(*track.domain).names;
    for (const model::Column& column : var.columns) {
        if (column.varNumber < 1) continue;
        const auto index = static_cast<std::size_t>(column.varNumber - 1);
        track.columns.resize(std::max(track.columns.size(), index + 1));
        track.columns[index] = {names[index], row, column.type, column.location, {}};
        addCell(track.columns[index], stateOf(column.varNumber, table[row]),
                work.report.times.size());
    }
}

// A variable without a file of its own is shared if its source is; one that has an optional file,
// as the element zones, is constant until a file was found.
CellState sharedState(const DomainTrack& track, const VariableRow& row, std::size_t i) {
    if (row.timing != plot_data::Timing::everyTime || row.read == plot_data::constantRead)
        return CellState::constant;
    const bool fileWasFound = !track.files[i].empty();
    return fileWasFound || row.stem.empty() ? CellState::missing : CellState::constant;
}

void readRow(Work& work, DomainTrack& track, std::size_t i) {
    Domain& domain = *track.domain;
    rowStep(work, track, i, variables::readVariable);
    const VariableRow& row = variables::tableOf(domain)[i];
    const std::vector<std::int32_t>& shared = domain.dataSet.nextZone.sharedVars;
    for (const model::Column& column : domain.outputVars[i].columns) {
        if (column.varNumber < 1) continue;
        const bool isShared = std::ranges::find(shared, column.varNumber) != shared.end();
        addCell(track.columns[static_cast<std::size_t>(column.varNumber - 1)],
                isShared ? sharedState(track, row, i) : stateOf(column.varNumber, row),
                work.report.times.size());
    }
}

// One finding has all output times with the same text.
void addAtThisTime(Work& work, Finding finding) {
    const auto isSame = [&](const Finding& other) {
        return other.kind == finding.kind && other.text == finding.text;
    };
    // From the last one, which is that of the output time before.
    std::vector<Finding>& findings = work.report.findings;
    const auto same = std::find_if(findings.rbegin(), findings.rend(), isSame);
    if (same != findings.rend()) return same->times.push_back(run.timeIndex);
    finding.times = {run.timeIndex};
    findings.push_back(std::move(finding));
}

// Every variable of a zone either has values or shares those of zone 1.
void checkZone(Work& work, const DomainTrack& track) {
    if (!track.domain->writeDomain.enabled) return;
    const Measure& zone = measureOf(*track.domain);
    std::string none, both, others;
    const auto addName = [&](std::string& names, std::size_t v) {
        names += (names.empty() ? "" : ", ") + zone.names[v];
    };
    for (std::size_t v = 0; v < zone.written.size(); ++v) {
        const std::int64_t expected =
            zone.ofElements[v] ? track.domain->neTruncated : track.domain->nnTruncated;
        if (zone.written[v] == zone.shared[v]) addName(zone.written[v] ? both : none, v);
        if (zone.written[v] && zone.counts[v] != expected) addName(others, v);
    }
    const auto add = [&](const std::string& sentence) {
        const bool ends = run.tecplotBinary;
        addAtThisTime(work, {.kind = "inconsistent_zone",
                             .text = track.domain->name + ": " + sentence +
                                     (ends ? "" : "; the plot file cannot be read"),
                             .endsRun = ends});
    };
    if (!none.empty()) add("the zone has no values of " + none);
    if (!both.empty()) add("the zone has values of " + both + ", but also shares those of zone 1");
    if (!others.empty())
        add("the zone has another number of values of " + others + " than of nodes or elements");
    if (zone.hasUndeclared)
        add("the zone has values of a variable that the data set does not have");
}

bool isTruncated(const Domain& domain) {
    return domain.truncateEnabled || domain.truncateByLayerEnabled;
}

void checkTruncation(Work& work, const Domain& domain) {
    if (!isTruncated(domain) || domain.neTruncated > 0) return;
    const std::string line = "truncate " + domain.name + " domain";
    auto request = work.requestLines.find(line);
    if (request == work.requestLines.end()) request = work.requestLines.find(line + " by layer");
    Finding finding{.kind = "empty_truncation",
                    .text =
                        "no element of the domain " + domain.name + " is inside this truncation"};
    if (request != work.requestLines.end()) {
        finding.file = request->second.file;
        finding.line = request->second.number;
    }
    work.report.findings.push_back(std::move(finding));
}

void firstPass(Work& work, DomainTrack& track) {
    Domain& domain = *track.domain;
    const Finding finding{.kind = "domain", .times = {run.timeIndex}};
    const bool isTruncatedNow =
        tryStep(work, finding, [&] { run::truncate(domain, work.domains.pm); });
    if (!isTruncatedNow) return;
    checkTruncation(work, domain);
    // Its only warning is of an unfinished data set, which is examined elsewhere.
    const Outcome outcome = attempt([&] { variables::beginDataSet(domain); });
    if (outcome.ended) addMessages(work, outcome, finding);
    track.isOpen = !outcome.ended;
    if (!track.isOpen) return;
    const std::size_t rows = variables::tableOf(domain).size();
    track.declared.assign(rows, false);
    track.files.assign(rows, "");
    for (std::size_t i = 0; i < rows; ++i) {
        rowStep(work, track, i, variables::declareVariable);
        addColumns(work, track, i);
    }
    tryStep(work, finding, [&] { variables::writeFirstZone(domain); });
    checkZone(work, track);
}

void laterPass(Work& work, DomainTrack& track) {
    if (!track.isOpen) return;
    Domain& domain = *track.domain;
    variables::beginLaterZone(domain);
    const auto table = variables::tableOf(domain);
    for (const bool last : {false, true})
        for (std::size_t i = 0; i < table.size(); ++i)
            if (table[i].sharedLast == last) readRow(work, track, i);
    tryStep(work, {.kind = "domain", .times = {run.timeIndex}},
            [&] { variables::writeLaterZone(domain); });
    checkZone(work, track);
}

// The time stamp in the header of the time file, before a conversion.
std::string readTimeStamp() {
    std::string stamp;
    attempt([&] {
        stamp = TVNBinaryFile::parseTVNBinFileHeader(
                    TVNBinaryFile::readTVNBinFileHeader(run.timeFile), run.timeFile)
                    .timestamp;
    });
    return stamp;
}

void reportOtherStamps(Work& work) {
    for (const auto& [stamp, files] : current.otherStamps)
        work.report.findings.push_back(
            {.kind = "other_time",
             .file = files.front(),
             .times = {run.timeIndex},
             .text = "the time stamp of this file" +
                     (files.size() > 1 ? ", and of " + std::to_string(files.size() - 1) + " more,"
                                       : std::string()) +
                     " is " + stamp + ", but the run takes " + current.timeStamp + " from " +
                     run.timeFile});
    current.otherStamps.clear();
}

// Greatest index that the digits of a file name can hold; a run with more finds the first files
// again.
std::int64_t greatestIndex() {
    std::int64_t greatest = 1;
    for (std::int32_t digit = 0; digit < run.suffixDigits; ++digit) greatest *= 10;
    return greatest - 1;
}

void addTime(Work& work, bool isWritten) {
    work.report.times.push_back({run.timeIndex, run.timeSuffix,
                                 std::string(StringHelpers::trimLeft(run.currentTimeText)),
                                 run.timeFile, isWritten});
    work.tested.insert(run.timeFile);
}

void process(Work& work, std::vector<DomainTrack>& tracks, bool isFirst) {
    current.testedAtThisTime.clear();
    current.timeStamp = readTimeStamp();
    if (isFirst)
        for (Domain* domain : run::processingOrder(work.domains))
            if (run::isProcessed(*domain)) tracks.push_back({.domain = domain});
    for (DomainTrack& track : tracks) isFirst ? firstPass(work, track) : laterPass(work, track);
    reportOtherStamps(work);
}

// Decides what the run does at this index. After a header that cannot be read, the output time
// counts as one to write.
run::OutputTime nextTime(Work& work, bool& firstInWindowFound, bool anyWritten) {
    run::OutputTime time = anyWritten ? run::OutputTime::later : run::OutputTime::first;
    const Outcome outcome = attempt([&] { time = run::nextOutputTime(firstInWindowFound); });
    if (!outcome.ended) return time;
    run.currentTimeText = std::string(unknownTime);
    work.report.findings.push_back({.kind = "malformed_header",
                                    .file = run.timeFile,
                                    .times = {run.timeIndex},
                                    .text = malformedText(outcome.messages.back()),
                                    .endsRun = true});
    return time;
}

} // namespace

std::string withoutIndex(const std::string& file) {
    return file.substr(0, file.rfind('.'));
}

void beginDryRun(Work& work) {
    current = {};
    current.work = &work;
    run.dryRun = &dryRun;
}

void passOutputTimes(Work& work, std::vector<DomainTrack>& tracks) {
    using enum run::OutputTime;
    selectMeasuringWriter();
    run::beginTimeLoop();
    bool firstInWindowFound = false, anyWritten = false;
    for (;; ++run.timeIndex) {
        if (run.timeIndex > greatestIndex()) {
            work.report.findings.push_back(
                {.kind = "too_many_times",
                 .times = {run.timeIndex},
                 .text = "file names have too few digits for this index, so a run would find the "
                         "files of the first output times again",
                 .endsRun = true});
            break;
        }
        const run::OutputTime time = nextTime(work, firstInWindowFound, anyWritten);
        if (time == end || time == nothingToAppend) break;
        if (time == onlyMesh) {
            process(work, tracks, true);
            break;
        }
        addTime(work, time != outsideWindow);
        if (time == outsideWindow) continue;
        process(work, tracks, time == first);
        anyWritten = true;
    }
    for (DomainTrack& track : tracks)
        for (ColumnTrack& column : track.columns)
            column.cells.resize(work.report.times.size(), CellState::notRead);
}

std::vector<LateVariable> lateVariables(Work& work, DomainTrack& track) {
    Domain& domain = *track.domain;
    const model::DataSet dataSet = domain.dataSet;
    const std::vector<model::OutputVar> outputVars = domain.outputVars;
    const auto options = domain.options;
    for (model::DomainOption& option : domain.options) option.enabled = true;
    current.track = &track;
    current.isProbe = true;
    std::vector<LateVariable> late;
    const auto table = variables::tableOf(domain);
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (track.declared[i]) continue;
        current.probed.clear();
        domain.outputVars[i] = {};
        domain.outputVars[i].key = table[i].key;
        attempt([&] { variables::declareVariable(domain, i); });
        for (const std::string& file : current.probed) {
            work.tested.insert(file);
            const bool enabled = table[i].option == model::Option::none ||
                                 options[static_cast<std::size_t>(table[i].option)].enabled;
            late.push_back({i, file, !enabled});
        }
    }
    current.isProbe = false;
    domain.dataSet = dataSet;
    domain.outputVars = outputVars;
    domain.options = options;
    return late;
}

} // namespace check
