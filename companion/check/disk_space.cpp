#include "companion/check/disk_space.hpp"

#include "meshrake/model/run_state.hpp"

#include <filesystem>
#include <limits>
#include <system_error>

namespace check {

namespace fs = std::filesystem;

namespace {

std::int64_t freeOnDisk(const std::string& folder) {
    std::error_code failure;
    const fs::space_info space = fs::space(folder, failure);
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    if (failure) return -1;
    return space.available > static_cast<std::uintmax_t>(most)
               ? most
               : static_cast<std::int64_t>(space.available);
}

std::int64_t sizeOf(const std::string& file) {
    std::error_code failure;
    const std::uintmax_t size = fs::file_size(file, failure);
    return failure ? 0 : static_cast<std::int64_t>(size);
}

} // namespace

std::int64_t (*freeBytes)(const std::string& folder) = freeOnDisk;

void checkDiskSpace(Work& work) {
    Report& report = work.report;
    const std::string folder = fs::path(report.prefix).parent_path().string();
    report.bytesFree = freeBytes(folder.empty() ? "." : folder);
    if (report.bytesFree < 0) return;
    const bool appends = model::run.tecplotAppend && model::run.startTimeIndex > 1;
    std::int64_t replaced = 0;
    for (const DomainReport& domain : report.domains)
        if (!domain.dataSet.empty() && !appends) replaced += sizeOf(domain.dataSet);
    for (const PlotReport& plot : report.plots) replaced += sizeOf(plot.file);
    if (report.bytesNeeded - replaced <= report.bytesFree) return;
    report.findings.push_back({.kind = "disk_full",
                               .text = "the plot files need " +
                                       std::to_string(report.bytesNeeded - replaced) +
                                       " bytes more than now, but only " +
                                       std::to_string(report.bytesFree) + " are free on the disk",
                               .endsRun = true});
}

} // namespace check
