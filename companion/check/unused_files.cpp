#include "companion/check/unused_files.hpp"

#include "companion/check/folder_names.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/result_files.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/variables/passes.hpp"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>
#include <stdexcept>

namespace check {

namespace fs = std::filesystem;
using model::run;

namespace {

const std::string fractionsFolder = "./hmc/";

// Result files by index of the output time.
using FilesByTime = std::map<std::int32_t, std::vector<std::string>>;

// The index at the end of a name, 0 if there is none with as many digits as the run expects.
std::int32_t indexOf(const std::string& name) {
    const std::size_t point = name.rfind('.');
    if (point == std::string::npos) return 0;
    const char* begin = name.data() + point + 1;
    const char* end = name.data() + name.size();
    std::int32_t index = 0;
    const auto [stop, fault] = std::from_chars(begin, end, index);
    const bool fits = end - begin == run.suffixDigits && stop == end && fault == std::errc();
    return fits && *begin != '-' ? index : 0;
}

// Adds the result files in a folder. `before` is the part of their names before that in the folder.
void addFiles(Work& work, const std::string& folder, const std::string& before,
              const std::string& prefix, FilesByTime& files) {
    try {
        for (const std::string& name : namesIn(folder)) {
            const std::int32_t index = name.starts_with(prefix) ? indexOf(name) : 0;
            if (index > 0) files[index].push_back(before + name);
        }
    } catch (const std::runtime_error& fault) {
        // The message begins with the name of the folder.
        work.report.findings.push_back(
            {.kind = "unlisted_folder",
             .file = folder,
             .text = std::string(fault.what()).substr(folder.size() + 2) +
                     ", so gaps and files that no variable reads are not found"});
    }
}

// Named as a run names them.
FilesByTime resultFiles(Work& work) {
    const fs::path prefix = run.problemPrefix;
    const std::string folder = prefix.parent_path().string();
    const std::string begin = prefix.filename().string() + "o.";
    FilesByTime files;
    addFiles(work, folder.empty() ? "." : folder, folder.empty() ? "" : folder + "/", begin, files);
    addFiles(work, fractionsFolder, fractionsFolder, begin, files);
    return files;
}

std::vector<std::string> untested(const Work& work, const std::vector<std::string>& files) {
    std::vector<std::string> rest;
    std::ranges::copy_if(files, std::back_inserter(rest),
                         [&](const std::string& file) { return !work.tested.contains(file); });
    return rest;
}

void setTime(std::int32_t index) {
    run.timeIndex = index;
    run.timeSuffix = model::outputTimeIndex(index);
}

bool hasTimeFile(std::int32_t index) {
    bool found = false;
    attempt([&] { found = model::findTimeFile("." + model::outputTimeIndex(index)); });
    return found;
}

std::string namesOf(const plot_data::VariableRow& row) {
    std::string names;
    for (std::size_t c = 0; c < plot_data::columnCount(row); ++c)
        names += (c > 0 ? ", " : "") + std::string(row.columns[c].name);
    return names;
}

// Output times at which files of a row exist, by the part of their names before the index.
using LateFiles = std::map<std::string, std::vector<std::int32_t>>;

void findLateVariables(Work& work, DomainTrack& track, const FilesByTime& files) {
    std::map<std::size_t, LateFiles> late;
    for (const TimeReport& time : work.report.times) {
        const auto found = files.find(time.index);
        if (!time.isWritten || found == files.end() || untested(work, found->second).empty())
            continue;
        setTime(time.index);
        for (const LateVariable& variable : lateVariables(work, track))
            if (!variable.isDisabled)
                late[variable.row][withoutIndex(variable.file)].push_back(time.index);
    }
    for (const auto& [row, byFile] : late)
        for (const auto& [file, times] : byFile) {
            const auto first = std::ranges::find(work.report.times, true, &TimeReport::isWritten);
            const std::string names = namesOf(variables::tableOf(*track.domain)[row]);
            work.report.findings.push_back(
                {.kind = "late_variable",
                 .file = file,
                 .times = times,
                 .text = "the files begin after the first output time, " + first->suffix +
                         ", so the plot file of " + track.domain->name + " does not have " +
                         (names.empty() ? "them" : names)});
        }
}

// Index at which the loop over the output times ended. An index that has no file in the list of
// those from which a run takes the time ends it, also if it has other files.
void findGap(Work& work, std::int32_t end, const FilesByTime& files) {
    std::vector<std::int32_t> later;
    for (const auto& [index, names] : files)
        if (index > end && hasTimeFile(index)) later.push_back(index);
    const auto here = files.find(end);
    if (here != files.end() && !hasTimeFile(end)) {
        work.report.findings.push_back(
            {.kind = "no_time_file",
             .file = here->second.front(),
             .times = {end},
             .text = "no file of this output time is of a kind from which a run takes the time, "
                     "so the plot files end before it"});
    } else if (!later.empty() && end > 1) { // the finding without output times covers index 1
        work.report.findings.push_back({.kind = "gap",
                                        .times = {end},
                                        .text = "this output time has no result files, so the "
                                                "plot files end before it"});
    }
    if (!later.empty())
        work.report.findings.push_back(
            {.kind = "after_gap",
             .times = later,
             .text = "result files after the gap are not in the plot files"});
}

// Files of domains that a run does not process have no variable that could read them.
bool isOfProcessedDomain(Work& work, const std::string& file) {
    for (const model::Domain* domain : run::processingOrder(work.domains))
        if (!run::isProcessed(*domain) && !domain->name.empty() &&
            withoutIndex(file).find("_" + domain->name) != std::string::npos)
            return false;
    return true;
}

// A kind of which one file is read is not among them: some variables are read at one output time.
void listUnread(Work& work, const FilesByTime& files) {
    std::set<std::string> read, unread;
    for (const std::string& file : work.tested) read.insert(withoutIndex(file));
    for (const TimeReport& time : work.report.times)
        if (const auto found = files.find(time.index); time.isWritten && found != files.end())
            for (const std::string& file : untested(work, found->second))
                if (isOfProcessedDomain(work, file)) unread.insert(withoutIndex(file));
    std::ranges::set_difference(unread, read, std::back_inserter(work.report.unreadFiles));
}

} // namespace

void findUnusedFiles(Work& work, std::vector<DomainTrack>& tracks) {
    const std::int32_t end = run.timeIndex;
    const FilesByTime files = resultFiles(work);
    if (work.report.times.empty())
        work.report.findings.push_back(
            {.kind = "no_times",
             .times = {end},
             .text = run.tecplotAppend && run.startTimeIndex > 1
                         ? "there is no further output time to append"
                         : "there are no result files of this output time, so the plot files have "
                           "the mesh alone"});
    findGap(work, end, files);
    for (DomainTrack& track : tracks)
        if (track.isOpen) findLateVariables(work, track, files);
    listUnread(work, files);
}

} // namespace check
