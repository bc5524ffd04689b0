#include "fuzz/support.hpp"

#include "companion/data_set/data_set_file.hpp"
#include "meshrake/meshrake.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <tuple>

namespace fuzz {

namespace {

using system_calls::FileInfo;
using system_calls::FileKind;
using system_calls::OpenMode;

constexpr std::size_t maximumFileBytes = 32 << 20; // the disk is full beyond this size

using Bytes = std::shared_ptr<std::string>;

struct OpenFile {
    std::string name;
    Bytes bytes; // null for a folder
    std::size_t position = 0;
};

struct Disk {
    const Files* before = nullptr;        // contents before the run, never copied
    std::map<std::string, Bytes> changed; // null for a file that was removed
    std::map<int, OpenFile> open;         // by descriptor
    // Next descriptor. No descriptor is used twice or is one of the system's, so that the use of a
    // closed one fails.
    int next = 1 << 20;
    std::string streams[3];
};
Disk disk;

int failure(int error) {
    errno = error;
    return -1;
}

OpenFile* findOpen(int descriptor) {
    const auto it = disk.open.find(descriptor);
    if (it == disk.open.end()) errno = EBADF;
    return it == disk.open.end() ? nullptr : &it->second;
}

// Returns the contents of a file for reading. The caller must not change them, because they can be
// those of `before`.
Bytes find(const std::string& name) {
    const auto it = disk.changed.find(name);
    if (it != disk.changed.end()) return it->second;
    const auto old = disk.before->find(name);
    if (old == disk.before->end()) return nullptr;
    return {Bytes(), const_cast<std::string*>(&old->second)};
}

Bytes findToChange(const std::string& name) {
    const Bytes now = find(name);
    if (!disk.changed.contains(name) || !now)
        disk.changed[name] = std::make_shared<std::string>(now ? *now : "");
    return disk.changed[name];
}

int openFile(const char* path, OpenMode mode) {
    const std::string name = path;
    const bool isFolder = name == "." || name.ends_with('/');
    if (isFolder && mode != OpenMode::read) return failure(EISDIR);
    Bytes bytes = find(name);
    const bool mustExist = mode == OpenMode::read || mode == OpenMode::existing;
    if (!bytes && mustExist && !isFolder) return failure(ENOENT);
    if (bytes && mode == OpenMode::create) return failure(EEXIST);
    if (mode != OpenMode::read) bytes = findToChange(name);
    if (mode == OpenMode::replace) bytes->clear();
    disk.open[disk.next] = {name, bytes};
    return disk.next++;
}

std::ptrdiff_t readAt(int descriptor, void* into, std::size_t size, std::int64_t position) {
    const OpenFile* f = findOpen(descriptor);
    if (!f || !f->bytes) return f ? failure(EISDIR) : -1;
    if (position < 0) return failure(EINVAL);
    const auto at = std::min(static_cast<std::size_t>(position), f->bytes->size());
    return static_cast<std::ptrdiff_t>(f->bytes->copy(static_cast<char*>(into), size, at));
}

std::ptrdiff_t writeAt(int descriptor, const void* from, std::size_t size, std::int64_t position) {
    const OpenFile* f = findOpen(descriptor);
    if (!f || !f->bytes) return f ? failure(EISDIR) : -1;
    if (position < 0) return failure(EINVAL);
    const auto at = static_cast<std::size_t>(position);
    if (at > maximumFileBytes || size > maximumFileBytes - at) return failure(ENOSPC);
    if (f->bytes->size() < at + size) f->bytes->resize(at + size);
    std::copy_n(static_cast<const char*>(from), size, f->bytes->data() + at);
    return static_cast<std::ptrdiff_t>(size);
}

std::ptrdiff_t readNext(int descriptor, void* into, std::size_t size) {
    if (descriptor == 0) return 0;
    OpenFile* f = findOpen(descriptor);
    if (!f) return -1;
    const std::ptrdiff_t n = readAt(descriptor, into, size, static_cast<std::int64_t>(f->position));
    if (n > 0) f->position += static_cast<std::size_t>(n);
    return n;
}

std::ptrdiff_t readBoth(int descriptor, void* first, std::size_t firstSize, void* second,
                        std::size_t secondSize) {
    const std::ptrdiff_t n = readNext(descriptor, first, firstSize);
    if (n < static_cast<std::ptrdiff_t>(firstSize)) return n;
    return n + std::max<std::ptrdiff_t>(readNext(descriptor, second, secondSize), 0);
}

std::ptrdiff_t writeNext(int descriptor, const void* from, std::size_t size) {
    if (descriptor == 1 || descriptor == 2) {
        disk.streams[descriptor].append(static_cast<const char*>(from), size);
        return static_cast<std::ptrdiff_t>(size);
    }
    OpenFile* f = findOpen(descriptor);
    if (!f) return -1;
    const std::ptrdiff_t n =
        writeAt(descriptor, from, size, static_cast<std::int64_t>(f->position));
    if (n > 0) f->position += static_cast<std::size_t>(n);
    return n;
}

std::int64_t seekTo(int descriptor, std::int64_t position) {
    OpenFile* f = findOpen(descriptor);
    if (!f) return -1;
    f->position = static_cast<std::size_t>(position);
    return position;
}

int fileInfo(int descriptor, FileInfo& info) {
    const OpenFile* f = findOpen(descriptor);
    if (!f) return -1;
    info.kind = f->bytes ? FileKind::regular : FileKind::folder;
    info.size = f->bytes ? static_cast<std::int64_t>(f->bytes->size()) : 0;
    info.number = std::hash<std::string>()(f->name);
    return 0;
}

int truncateTo(int descriptor, std::int64_t size) {
    const OpenFile* f = findOpen(descriptor);
    if (!f) return -1;
    if (size < 0 || static_cast<std::size_t>(size) > maximumFileBytes) return failure(EFBIG);
    f->bytes->resize(static_cast<std::size_t>(size));
    return 0;
}

system_calls::Table memoryTable() {
    system_calls::Table table = system_calls::systemTable();
    table.open = openFile;
    table.read = readNext;
    table.readBoth = readBoth;
    table.write = writeNext;
    table.seek = seekTo;
    table.close = [](int d) { return disk.open.erase(d) > 0 ? 0 : failure(EBADF); };
    table.fileInfo = fileInfo;
    table.exists = [](const char* path) { return find(path) ? 0 : failure(ENOENT); };
    table.readAt = readAt;
    table.writeAt = writeAt;
    table.truncate = truncateTo;
    table.reserve = [](int d, std::int64_t, std::int64_t) { return findOpen(d) ? 0 : -1; };
    table.sync = [](int d) { return findOpen(d) ? 0 : -1; };
    table.lock = [](int d, bool) { return findOpen(d) ? 0 : -1; };
    table.rename = [](const char* from, const char* to) {
        if (!find(from)) return failure(ENOENT);
        disk.changed[to] = findToChange(from);
        disk.changed[from] = nullptr;
        return 0;
    };
    table.remove = [](const char* path) {
        if (!find(path)) return failure(ENOENT);
        disk.changed[path] = nullptr;
        return 0;
    };
    table.setPermissions = [](int d, unsigned) { return findOpen(d) ? 0 : -1; };
    table.fileInfoOfName = [](const char* path, FileInfo& info) {
        info = {};
        info.number = std::hash<std::string>()(path);
        return find(path) ? 0 : failure(ENOENT);
    };
    table.readLink = [](const char* path, char*, std::size_t) -> std::ptrdiff_t {
        return failure(find(path) ? EINVAL : ENOENT);
    };
    return table;
}

std::string contentsOf(const std::filesystem::path& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

Files read(const std::filesystem::path& folder) {
    Files found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            found[entry.path().lexically_relative(folder)] = contentsOf(entry.path());
    require(found.contains("batch.pfx"), "the problem is not in " + folder.string());
    return found;
}

// A data set is still open after a run with append, and after a run that ended with an error.
void checkClosed() {
    for (int unit = io_layer::firstUnit; unit <= io_layer::lastUnit; ++unit)
        require(!io_layer::unitTaken(unit), "a unit is still in use");
    for (const auto& [descriptor, file] : disk.open)
        require(file.name.find(".szplt") != std::string::npos, file.name + " is still open");
}

void checkDataSets() {
    for (const auto& [name, bytes] : disk.changed) {
        if (!bytes || !name.ends_with(".szplt")) continue;
        try {
            data_set_file::read(name);
        } catch (const std::runtime_error& fault) {
            require(false, name + " is not a readable data set: " + fault.what());
        }
    }
}

int runOnce(const Files& before, const Files& changed, bool legacyVtk) {
    setFiles(before, changed);
    const char* argv[] = {"meshrake"};
    const int status = meshrake_main(1, argv, legacyVtk);
    const std::string_view text = status == 0 ? "---- Normal exit ----" : "HALTING EXECUTION ***";
    require(status == 0 || status == 1, "the status is neither 0 nor 1");
    require(disk.streams[status == 0 ? 1 : 2].find(text) != std::string::npos,
            "neither a normal exit nor a banner");
    checkClosed();
    if (status == 0) checkDataSets();
    return status;
}

// Files contain the time of day in seconds.
auto timeOfDay() {
    const system_calls::LocalTime t = system_calls::localTime();
    return std::tuple(t.hour, t.minute, t.second);
}

// Everything that the run has written.
auto output() {
    Files written;
    for (const auto& [name, bytes] : disk.changed) written[name] = bytes ? *bytes : "(removed)";
    return std::tuple(written, disk.streams[1], disk.streams[2]);
}

// True for one input in eight.
bool isRepeated(const Files& changed) {
    std::size_t hash = 0;
    for (const auto& [name, bytes] : changed) hash += std::hash<std::string>()(bytes);
    return hash % 8 == 0;
}

} // namespace

void require(bool condition, std::string_view what) {
    if (condition) return;
    std::fprintf(stderr, "%.*s\n%s", static_cast<int>(what.size()), what.data(),
                 disk.streams[2].c_str());
    std::abort();
}

Files problem(int times) {
    static const Files all = read(FUZZ_PROBLEM);
    Files some = all;
    for (int index = times + 1; index <= 3; ++index)
        std::erase_if(some, [&](const auto& file) {
            return file.first.ends_with(".000" + std::to_string(index));
        });
    return some;
}

Files smallProblem(int times) {
    Files files = problem(times);
    std::erase_if(files, [](const auto& file) {
        const std::string& name = file.first;
        const auto has = [&](const char* part) { return name.find(part) != std::string::npos; };
        const bool ofDomains = has("_pm") || has("_olf");
        const bool isResult = has(".000");
        if (has("species") || has("hmc")) return true;
        if (isResult) return !ofDomains || !(has("head") || has(".v_") || has("ElemK"));
        // The global node numbers of olf follow those of dual.
        return (has("coordinates_") || has("elements_")) && !ofDomains && !has("_dual");
    });
    return files;
}

void setFiles(const Files& before, const Files& changed) {
    system_calls::table = memoryTable();
    disk.before = &before;
    disk.changed.clear();
    for (const auto& [name, bytes] : changed)
        disk.changed[name] = std::make_shared<std::string>(bytes);
    disk.open.clear();
    for (std::string& text : disk.streams) text.clear();
}

Files files() {
    Files now = *disk.before;
    for (const auto& [name, bytes] : disk.changed) {
        now.erase(name);
        if (bytes) now[name] = *bytes;
    }
    return now;
}

bool endsRun(const std::function<void()>& call) {
    try {
        call();
    } catch (const error::RunEnded&) {
        require(disk.streams[2].find("HALTING EXECUTION ***") != std::string::npos, "no banner");
        checkClosed();
        return true;
    }
    return false;
}

int run(const Files& before, const Files& changed, bool legacyVtk) {
    const auto began = timeOfDay();
    const int status = runOnce(before, changed, legacyVtk);
    if (!isRepeated(changed)) return status;
    const auto first = output();
    require(runOnce(before, changed, legacyVtk) == status, "a second run has another status");
    require(timeOfDay() != began || output() == first, "a second run has other output");
    return status;
}

std::string edit(const Files& files, std::string_view input, Files& changed) {
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(line.size() + 1, input.size()));
    const std::size_t blank = std::min(line.find(' '), line.size());
    const auto it = files.find(std::string(line.substr(std::min(blank + 1, line.size()))));
    if (it == files.end()) return "";
    std::string& bytes = changed[it->first] = it->second;
    while (input.size() >= 4) {
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(input[i]); };
        const std::size_t offset = std::min<std::size_t>(byte(0) + 256U * byte(1), bytes.size());
        const std::size_t removed = byte(2) == 255 ? std::string::npos : byte(2);
        const std::string_view inserted = input.substr(4, byte(3));
        bytes.replace(offset, removed, inserted);
        input.remove_prefix(4 + inserted.size());
    }
    return std::string(line.substr(0, blank));
}

} // namespace fuzz
