#include "companion/check/earlier_data_sets.hpp"

#include "companion/check/earlier_files.hpp"
#include "companion/data_set/data_set_file.hpp"
#include "companion/screen/screen.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_data/binary_open.hpp"
#include "tecio/own_functions.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"

#include <algorithm>
#include <stdexcept>

namespace check {

using model::Domain;
using model::run;
using namespace plot_data::binary;

namespace {

// Statuses of an open, besides those in binary_open.hpp and of the I/O layer.
constexpr std::int32_t fine = 0;
constexpr std::int32_t noZones = plot_data::binary::invalidCall; // without a list of variables

struct EarlierFile {
    std::string path;
    bool exists = false;
    bool hasSidecar = false; // it is unfinished
};

EarlierFile fileOf(const Domain& domain) {
    EarlierFile file;
    file.path = model::problemFile(domain.name) + ".szplt";
    attempt([&] { file.exists = file_units::exists(file.path); });
    attempt([&] { file.hasSidecar = file_units::exists(file.path + ".szhdr"); });
    return file;
}

void add(Work& work, std::string_view kind, const std::string& file, std::string sentence,
         bool endsRun) {
    work.report.findings.push_back(
        {.kind = kind, .file = file, .text = std::move(sentence), .endsRun = endsRun});
}

// Returns the status of an open that resumes the data set, without a change of it.
std::int32_t examine(const EarlierFile& file, const DomainTrack* track, bool durable,
                     tecio::UnfinishedDataSet& set) {
    const std::string variables = track ? track->domain->dataSet.varNameList : "";
    if constexpr (MESHRAKE_OWN_TECIO)
        return tecio::examineUnfinished(file.path, variables, durable, set);
    return fine;
}

std::string contentsText(const tecio::UnfinishedDataSet& set) {
    if (set.zones == 0) return "without an output time";
    const bool isOne = set.zones == 1;
    return "with " + std::to_string(set.zones) + (isOne ? " output time" : " output times") +
           " up to " + screen::numberText(set.lastTime);
}

void reportUnfinished(Work& work, const EarlierFile& file, bool isReplaced) {
    tecio::UnfinishedDataSet set;
    const std::int32_t status = file.exists ? examine(file, nullptr, false, set) : fine;
    std::string sentence = "an earlier run left this data set unfinished, " + contentsText(set);
    if (status == damagedDataSet || status == damagedSidecar) sentence += ", and it is damaged";
    add(work, "unfinished_data_set", file.path,
        sentence + (isReplaced ? "; this run replaces it" : ""), false);
}

void checkResumed(Work& work, const EarlierFile& file, const DomainTrack* track) {
    if (!file.exists) // the run creates it at its first output time
        return add(work, "missing_data_set", file.path,
                   "there is no such data set of an earlier run, so its output times before " +
                       std::to_string(run.startTimeIndex) + " will be missing",
                   false);
    if (!file.hasSidecar) {
        // Without a further output time the run does not open the data set.
        if (track)
            add(work, "finished_data_set", file.path,
                "an earlier run finished this data set, so no output time can be appended", true);
        return;
    }
    tecio::UnfinishedDataSet set;
    const std::int32_t status = examine(file, track, true, set);
    const auto end = [&](std::string_view kind, const std::string& sentence) {
        add(work, kind, file.path, sentence + ", so no output time can be appended", true);
    };
    if (status == damagedDataSet)
        end("damaged_data_set", "this data set of an earlier run is damaged");
    else if (status == damagedSidecar)
        end("damaged_data_set", "the file " + file.path + ".szhdr of an earlier run is damaged");
    else if (status == otherVariables)
        end("other_variables", "this data set of an earlier run has other variables");
    else if (status == notDurable)
        end("finished_data_set", "the earlier run did not have \"tecplot binary append\"");
    else if (status != fine && (track || status != noZones))
        end("unreadable_file",
            "this data set of an earlier run cannot be read: " + error::ioStatErrorMsg(status));
    else if (track && set.zones > 0 &&
             (set.nodes != track->domain->nnTruncated ||
              set.elements != track->domain->neTruncated))
        end("other_mesh", "this data set of an earlier run has other nodes or elements");
}

void reportIfDamaged(Work& work, const EarlierFile& file, bool isReplaced) {
    try {
        data_set_file::File opened(file.path);
        data_set_file::scan(opened);
    } catch (const std::runtime_error& fault) {
        // The message begins with the name of the file.
        std::string text = fault.what();
        if (text.starts_with(file.path + ": ")) text.erase(0, file.path.size() + 2);
        add(work, "damaged_data_set", file.path,
            "this data set of an earlier run cannot be read: " + text +
                (isReplaced ? "; this run replaces it" : ""),
            false);
    }
}

} // namespace

void checkEarlierDataSets(Work& work, const std::vector<DomainTrack>& tracks) {
    const bool continues = run.tecplotAppend && run.startTimeIndex > 1;
    for (const Domain* domain : run::processingOrder(work.domains)) {
        if (!domain->exists) continue;
        const EarlierFile file = fileOf(*domain);
        const auto found = std::ranges::find(tracks, domain, &DomainTrack::domain);
        const DomainTrack* track = found != tracks.end() && found->isOpen ? &*found : nullptr;
        const bool isWritten = domain->writeDomain.enabled;
        const bool isReplaced =
            isWritten && track && run.tecplotBinary && whyNotReplaceable(file.path).empty();
        if (continues && isWritten)
            checkResumed(work, file, track);
        else if (file.hasSidecar)
            reportUnfinished(work, file, isReplaced);
        else if (file.exists)
            reportIfDamaged(work, file, isReplaced);
    }
}

} // namespace check
