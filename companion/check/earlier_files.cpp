#include "companion/check/earlier_files.hpp"

#include "meshrake/model/file_names.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/byte_file.hpp"
#include "tvncommon/io/io_layer.hpp"

namespace check {

namespace {

// A device or a pipe, which a run writes in place.
bool isDevice(const std::string& path) {
    system_calls::FileInfo info;
    return system_calls::table.fileInfoOfName(path.c_str(), info) == 0 &&
           info.kind == system_calls::FileKind::other;
}

} // namespace

std::string whyNotReplaceable(const std::string& path) {
    if (isDevice(path)) return "";
    byte_file::File file;
    std::int64_t size = 0;
    const int status = byte_file::open(path, system_calls::OpenMode::existing, file, size);
    byte_file::close(file);
    return status == io_layer::ok || status == io_layer::fileNotFound
               ? ""
               : error::ioStatErrorMsg(status);
}

void checkEarlierFiles(Work& work) {
    std::vector<std::string> files{model::problemFile("meshrake.eco")};
    for (const DomainReport& domain : work.report.domains)
        if (!domain.dataSet.empty()) files.push_back(domain.dataSet);
    for (const PlotReport& plot : work.report.plots) files.push_back(plot.file);
    for (const std::string& file : files)
        if (const std::string reason = whyNotReplaceable(file); !reason.empty())
            work.report.findings.push_back({.kind = "unwritable_file",
                                            .file = file,
                                            .text = "it cannot be replaced: " + reason,
                                            .endsRun = true});
}

} // namespace check
