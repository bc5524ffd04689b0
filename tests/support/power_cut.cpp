#include "tests/support/power_cut.hpp"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <random>
#include <set>

namespace power_cut {

namespace {

using sample_files::Bytes;
using sample_files::Problem;
using system_calls::OpenMode;
using system_calls::Table;

enum class Kind { write, resize, sync, link, rename, remove, syncFolder };

struct Call {
    Kind kind;
    std::size_t file = 0; // number of the file, the same after a rename
    std::size_t at = 0;   // position, or new size
    Bytes bytes{};
    std::string name{}, newName{};
};

using Names = std::map<std::string, std::size_t>;

struct Recorder {
    Table table;
    std::vector<Bytes> begin; // contents of the files before the calls
    Names namesAtFirst, names;
    std::map<int, std::size_t> open; // by descriptor
    std::map<int, std::size_t> position;
    std::set<int> folders;
    std::vector<Call> calls;
};
Recorder recorder;

bool isRecorded(const std::string& name) {
    return name.find(".szplt") != std::string::npos || name.find("tec_append") != std::string::npos;
}

int openFile(const char* path, OpenMode mode) {
    Recorder& r = recorder;
    const int descriptor = r.table.open(path, mode);
    if (descriptor < 0) return descriptor;
    r.open.erase(descriptor);
    r.folders.erase(descriptor);
    if (std::filesystem::is_directory(path)) r.folders.insert(descriptor);
    if (!isRecorded(path)) return descriptor;
    if (!r.names.contains(path)) {
        r.names[path] = r.begin.size();
        r.begin.emplace_back();
        r.calls.push_back({Kind::link, r.names[path], 0, {}, path});
    }
    r.open[descriptor] = r.names[path];
    r.position[descriptor] = 0;
    if (mode == OpenMode::replace) r.calls.push_back({Kind::resize, r.names[path]});
    return descriptor;
}

void recordWrite(int descriptor, const void* from, std::ptrdiff_t size, std::size_t at) {
    if (!recorder.open.contains(descriptor)) return;
    const Bytes all(static_cast<const char*>(from), static_cast<std::size_t>(std::max(size, {})));
    for (std::size_t done = 0; done < all.size();) {
        const std::size_t n = std::min(all.size() - done, 4096 - (at + done) % 4096);
        recorder.calls.push_back(
            {Kind::write, recorder.open[descriptor], at + done, all.substr(done, n)});
        done += n;
    }
}

std::ptrdiff_t writeNext(int descriptor, const void* from, std::size_t size) {
    const std::ptrdiff_t n = recorder.table.write(descriptor, from, size);
    std::size_t& position = recorder.position[descriptor];
    recordWrite(descriptor, from, n, position);
    position += static_cast<std::size_t>(std::max<std::ptrdiff_t>(n, 0));
    return n;
}

std::ptrdiff_t writeAt(int descriptor, const void* from, std::size_t size, std::int64_t at) {
    const std::ptrdiff_t n = recorder.table.writeAt(descriptor, from, size, at);
    recordWrite(descriptor, from, n, static_cast<std::size_t>(at));
    return n;
}

int truncate(int descriptor, std::int64_t size) {
    if (recorder.open.contains(descriptor))
        recorder.calls.push_back(
            {Kind::resize, recorder.open[descriptor], static_cast<std::size_t>(size)});
    return recorder.table.truncate(descriptor, size);
}

int sync(int descriptor) {
    if (recorder.folders.contains(descriptor)) recorder.calls.push_back({Kind::syncFolder});
    if (recorder.open.contains(descriptor))
        recorder.calls.push_back({Kind::sync, recorder.open[descriptor]});
    return 0; // the test's own files need not be on the disk
}

int rename(const char* from, const char* to) {
    const int status = recorder.table.rename(from, to);
    if (status == 0 && isRecorded(from)) {
        const std::size_t file = recorder.names.at(from);
        recorder.names.erase(from);
        recorder.names[to] = file;
        recorder.calls.push_back({Kind::rename, file, 0, {}, from, to});
    }
    return status;
}

int remove(const char* path) {
    const int status = recorder.table.remove(path);
    if (status == 0 && isRecorded(path)) {
        recorder.names.erase(path);
        recorder.calls.push_back({Kind::remove, 0, 0, {}, path});
    }
    return status;
}

void apply(Bytes& contents, const Call& call, bool asZeros = false) {
    if (call.kind == Kind::resize) {
        if (!asZeros) contents.resize(call.at);
        return;
    }
    const std::size_t before = contents.size(), end = call.at + call.bytes.size();
    contents.resize(std::max(before, end));
    if (!asZeros) contents.replace(call.at, call.bytes.size(), call.bytes);
}

void apply(Names& names, const Call& call) {
    if (call.kind == Kind::link) names[call.name] = call.file;
    if (call.kind == Kind::rename) names[call.newName] = call.file;
    if (call.kind == Kind::remove || call.kind == Kind::rename) names.erase(call.name);
}

// Contents and names on the disk, and calls whose changes may be on the disk.
struct Disk {
    std::vector<Bytes> contents;
    Names names;
    std::vector<Call> pending, pendingNames;
};

void add(Disk& disk, const Call& call) {
    const auto reachesDisk = [&](const Call& pending) {
        if (pending.file == call.file) apply(disk.contents[call.file], pending);
        return pending.file == call.file;
    };
    switch (call.kind) {
    case Kind::write:
    case Kind::resize:
        disk.pending.push_back(call);
        break;
    case Kind::sync:
        std::erase_if(disk.pending, reachesDisk);
        break;
    case Kind::syncFolder:
        for (const Call& pending : disk.pendingNames) apply(disk.names, pending);
        disk.pendingNames.clear();
        break;
    default:
        disk.pendingNames.push_back(call);
    }
}

enum class Fate { missing, zeros, kept };

Problem filesLeft(const Disk& disk, const std::function<Fate(std::size_t)>& fateOf,
                  const std::function<bool(std::size_t)>& keepsName) {
    std::vector<Bytes> contents = disk.contents;
    Names names = disk.names;
    for (std::size_t i = 0; i < disk.pending.size(); ++i) {
        const Fate fate = fateOf(i);
        if (fate != Fate::missing)
            apply(contents[disk.pending[i].file], disk.pending[i], fate == Fate::zeros);
    }
    for (std::size_t i = 0; i < disk.pendingNames.size(); ++i)
        if (keepsName(i)) apply(names, disk.pendingNames[i]);
    Problem files;
    for (const auto& [name, file] : names) files[name] = contents[file];
    return files;
}

} // namespace

Problem recordedFiles() {
    Problem files;
    for (const std::string& name : sample_files::filesHere())
        if (isRecorded(name)) files[name] = sample_files::get(name);
    return files;
}

Table recording(const Table& calls) {
    recorder = {};
    recorder.table = calls;
    for (const auto& [name, contents] : recordedFiles()) {
        recorder.names[name] = recorder.begin.size();
        recorder.begin.push_back(contents);
    }
    recorder.namesAtFirst = recorder.names;
    Table table = calls;
    table.open = openFile;
    table.write = writeNext;
    table.writeAt = writeAt;
    table.truncate = truncate;
    table.sync = sync;
    table.rename = rename;
    table.remove = remove;
    return table;
}

std::vector<Problem> statesLeft(bool many) {
    std::set<Problem> states;
    std::mt19937 numbers(1);
    Disk disk{recorder.begin, recorder.namesAtFirst, {}, {}};
    for (std::size_t call = 0; call <= recorder.calls.size(); ++call) {
        const std::size_t names = disk.pendingNames.size();
        const auto put = [&](const auto& fateOf, const auto& keepsName) {
            states.insert(filesLeft(disk, fateOf, keepsName));
        };
        const auto all = [](std::size_t) { return true; };
        for (const Fate fate : {Fate::missing, Fate::zeros, Fate::kept}) {
            const auto same = [=](std::size_t) { return fate; };
            for (std::size_t one = 0; one <= names; ++one) {
                put(same, [=](std::size_t i) { return i < one; });
                put(same, [=](std::size_t i) { return i != one; });
            }
        }
        const std::size_t step = many ? 1 : 1 + disk.pending.size() / 6;
        for (std::size_t one = call % step; one < disk.pending.size(); one += step) {
            put([=](std::size_t i) { return i == one ? Fate::kept : Fate::missing; }, all);
            for (const Fate fate : {Fate::missing, Fate::zeros})
                put([=](std::size_t i) { return i == one ? fate : Fate::kept; }, all);
        }
        for (int i = 0; i < (many ? 40 : 2) && !disk.pending.empty(); ++i)
            put([&](std::size_t) { return static_cast<Fate>(numbers() % 3); },
                [&](std::size_t) { return numbers() % 2 == 0; });
        if (call < recorder.calls.size()) add(disk, recorder.calls[call]);
    }
    return {states.begin(), states.end()};
}

} // namespace power_cut
