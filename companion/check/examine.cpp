#include "companion/check/check.hpp"

#include "companion/check/control.hpp"
#include "companion/check/disk_space.hpp"
#include "companion/check/dry_run.hpp"
#include "companion/check/earlier_data_sets.hpp"
#include "companion/check/earlier_files.hpp"
#include "companion/check/forecast.hpp"
#include "companion/check/observations.hpp"
#include "companion/check/problem.hpp"
#include "companion/check/surface_plots.hpp"
#include "companion/check/unused_files.hpp"
#include "meshrake/run/reset.hpp"

#include <filesystem>
#include <memory>
#include <system_error>

namespace check {

namespace {

// Restores the working directory at the end of the scope.
struct WorkingDirectory {
    std::filesystem::path before = std::filesystem::current_path();
    WorkingDirectory() = default;
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;
    ~WorkingDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(before, ignored);
    }
};

} // namespace

Report examine(const std::string& folderOrPrefix) {
    const WorkingDirectory directory;
    run::resetAll();
    const auto work = std::make_unique<Work>();
    beginDryRun(*work);
    findProblem(*work, folderOrPrefix);
    readProblem(*work);
    readControlFile(*work);
    if (work->hasMesh) {
        std::vector<DomainTrack> tracks;
        passOutputTimes(*work, tracks);
        checkTimes(*work);
        findUnusedFiles(*work, tracks);
        reportDomains(*work, tracks);
        checkEarlierDataSets(*work, tracks);
        checkObservations(*work);
        measureSurfacePlots(*work);
        checkEarlierFiles(*work);
        checkDiskSpace(*work);
    }
    Report report = std::move(work->report);
    run::resetAll();
    return report;
}

} // namespace check
