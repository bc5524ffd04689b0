#include "companion/commands/commands.hpp"
#include "companion/data_set/data_set_file.hpp"
#include "companion/screen/screen.hpp"
#include "companion/xdmf/index.hpp"
#include "companion/xdmf/xml_text.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace commands {

namespace {

using std::filesystem::path;

struct Options {
    std::vector<std::string> files;
    std::string index;
};

constexpr std::string_view indexMark = "<Xdmf";
constexpr std::int64_t indexMarkEnd = 256; // bytes of a file in which it is searched

void check(int status, const std::string& file) {
    if (status != io_layer::ok)
        throw std::runtime_error(file + ": " + error::ioStatErrorMsg(status));
}

// Name of the index without -o: that of the data set, or for those of one problem its prefix, in
// the folder of the first.
std::string defaultIndex(const std::vector<std::string>& files) {
    if (files.size() == 1) return path(files[0]).replace_extension(".xdmf").string();
    std::set<std::string> problems;
    for (const std::string& file : files) {
        const path normal = path(file).lexically_normal();
        const std::string stem = normal.stem().stem().string(); // <prefix>o.<domain>.szplt
        if (stem.size() > 1 && stem.ends_with('o'))
            problems.insert((normal.parent_path() / stem.substr(0, stem.size() - 1)).string());
        else
            problems.insert("");
    }
    if (problems.size() > 1 || problems.contains(""))
        throw CLI::RequiredError("-o, for data sets that are not of one problem,");
    return *problems.begin() + ".xdmf";
}

std::string realFolder(const std::string& file) {
    const std::string folder = path(file).parent_path().string();
    std::string real;
    if (system_calls::table.realPath(folder.empty() ? "." : folder.c_str(), real) != 0)
        throw std::runtime_error(file + ": its folder cannot be found");
    return real;
}

// A viewer looks for the data set from the folder of the index. The folders are compared without
// links, because the folder above a link is not that above its target.
std::string relativeName(const std::string& file, const std::string& index) {
    const path folder = path(realFolder(file)).lexically_relative(realFolder(index));
    return (folder / path(file).filename()).lexically_normal().string();
}

// -o may be followed by a data set by mistake.
void checkReplaceable(const std::string& index) {
    byte_file::File file;
    std::int64_t size = 0;
    const int opened = byte_file::open(index, system_calls::OpenMode::read, file, size);
    if (opened == io_layer::permissionDenied) check(opened, index);
    if (opened != io_layer::ok) return; // the write reports other failures
    std::string begin(static_cast<std::size_t>(std::min(size, indexMarkEnd)), ' ');
    const int status = byte_file::readAt(file, 0, begin.data(), std::ssize(begin));
    byte_file::close(file);
    check(status, index);
    if (size > 0 && begin.find(indexMark) == std::string::npos)
        throw std::runtime_error(index + ": exists and is not an index; it is not replaced");
}

void writeIndex(const std::string& index, const std::string& text) {
    const int unit = io_layer::takeUnit();
    check(io_layer::openTextForCommit(unit, index), index);
    int status = io_layer::writeBlock(unit, text.data(), text.size());
    if (status == io_layer::ok)
        status = io_layer::commitUnit(unit);
    else
        io_layer::releaseUnit(unit);
    check(status, index);
}

xdmf::Block readBlock(const std::string& file, const std::string& index) {
    data_set_file::File opened(file);
    data_set_file::DataSet set = scan(opened);
    for (const data_set_file::Zone& zone : set.zones)
        if (zone.connectivityShare == 0) checkElementNodes(opened, zone);
    return xdmf::blockOf(file, xdmf::xmlFileName(relativeName(file, index)), std::move(set));
}

int writeXdmf(const Options& options) {
    checkReplaceable(options.index);
    std::vector<xdmf::Block> blocks;
    for (const std::string& file : options.files) blocks.push_back(readBlock(file, options.index));
    writeIndex(options.index, xdmf::indexOf(blocks));
    return 0;
}

} // namespace

Run addXdmf(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    app.add_option("FILE", options->files, "Binary data sets (.szplt)")->required();
    app.add_option("-o,--output", options->index,
                   "Index to write; by default FILE with the ending .xdmf, or PREFIX.xdmf for "
                   "several domains of a problem");
    app.footer("The index shows all output times of the data sets in a viewer that reads XDMF. It\n"
               "contains no values, so keep the data sets at the same position relative to it.");
    app.parse_complete_callback([options] {
        if (options->index.empty()) options->index = defaultIndex(options->files);
    });
    return [options] { return writeXdmf(*options); };
}

} // namespace commands
