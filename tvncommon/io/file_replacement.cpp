#include "tvncommon/io/file_replacement.hpp"

#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cerrno>
#include <utility>

namespace file_replacement {

namespace {

using io_layer::ok;
using system_calls::FileFacts;
using system_calls::FileKind;
using system_calls::OpenMode;
using system_calls::restart;
using system_calls::table;

constexpr int mostLinks = 40; // as many as the system follows
constexpr std::size_t longestLink = 4096;
constexpr int mostAttempts = 100; // to create a file that other processes remove or lock

// Replaces `name` by what it links to, also where that does not exist.
int followLinks(std::string& name) {
    for (int links = 0; links <= mostLinks; ++links) {
        std::string target(longestLink, '\0');
        const std::ptrdiff_t n = table.readLink(name.c_str(), target.data(), target.size());
        if (n < 0) { // EINVAL: the name is no link
            const bool final = errno == EINVAL || errno == ENOENT || errno == ENOTDIR;
            return final ? ok : io_layer::statusOfOpen(errno);
        }
        target.resize(static_cast<std::size_t>(n));
        const std::size_t folder = target.starts_with('/') ? 0 : name.rfind('/') + 1;
        name = name.substr(0, folder) + target;
    }
    return io_layer::openFailed;
}

// The folder takes no new file, or none of so long a name or with these permissions.
bool refusedByFolder(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

// Locks the open file. False if another process has the lock, or has removed or renamed the file.
// Where the file system has no locks only the name counts.
bool own(int descriptor, const std::string& name) {
    const bool locked = restart([=] { return table.lock(descriptor, false); }) == 0;
    if (!locked && errno == EWOULDBLOCK) return false;
    FileFacts opened, named;
    return table.facts(descriptor, opened) == 0 && table.namedFacts(name.c_str(), named) == 0 &&
           opened.device == named.device && opened.number == named.number;
}

// What an open for writing says of a folder, a pipe, a link to nothing or to itself, and of a file
// that is not this user's: it cannot be locked, and is removed if the system permits it.
bool cannotBeLocked(int error) {
    return error == ENOENT || error == EISDIR || error == ENXIO || error == ELOOP ||
           error == EACCES;
}

// Removes what has the name of the new file, unless another process holds its lock.
int removeLeftOver(const std::string& made) {
    const int descriptor = restart([&] { return table.open(made.c_str(), OpenMode::existing); });
    if (descriptor < 0 && !cannotBeLocked(errno)) return -1;
    const bool removable = descriptor < 0 || own(descriptor, made);
    const int result = removable ? table.remove(made.c_str()) : 0;
    const int error = errno;
    if (descriptor >= 0) table.close(descriptor);
    errno = error;
    return result == 0 || error == ENOENT ? 0 : -1;
}

// Runs of several problems in one folder share `batch.pfx`. The lock keeps the new file of one from
// the others until it has its final name; it fails with EEXIST while another process holds it.
int createLocked(const std::string& made) {
    for (int attempt = 1;; ++attempt) {
        const int descriptor = restart([&] { return table.open(made.c_str(), OpenMode::create); });
        if (descriptor >= 0 && own(descriptor, made)) return descriptor;
        if (descriptor >= 0) table.close(descriptor);
        if (descriptor < 0 && errno != EEXIST) return -1;
        if (attempt == mostAttempts) return errno = EEXIST, -1;
        if (removeLeftOver(made) != 0) return -1;
    }
}

// The new file, with the permissions of the `old` one if there is one; -1 with `errno` on failure.
int create(const std::string& made, const FileFacts* old) {
    const int descriptor = createLocked(made);
    if (descriptor < 0 || !old) return descriptor;
    FileFacts facts;
    if (table.facts(descriptor, facts) == 0 &&
        (facts.permissions == old->permissions ||
         table.setPermissions(descriptor, old->permissions) == 0))
        return descriptor;
    const int error = errno;
    table.close(descriptor);
    table.remove(made.c_str());
    errno = error;
    return -1;
}

// Takes over the descriptor of the target. A file has become empty then; others have no size.
int openInPlace(Replacement& replacement, int target, FileKind kind, int& descriptor) {
    replacement.made.clear();
    if (kind == FileKind::regular && restart([=] { return table.truncate(target, 0); }) != 0)
        return io_layer::openFailed;
    descriptor = target;
    return ok;
}

int beginWith(Replacement& replacement, InPlace inPlace, int target, int& descriptor) {
    FileFacts old;
    if (target >= 0 && table.facts(target, old) != 0) return io_layer::openFailed;
    const bool special = target >= 0 && old.kind != FileKind::regular;
    if (special && inPlace == InPlace::refused) return io_layer::openFailed;
    if (!special) {
        descriptor = create(replacement.made, target >= 0 ? &old : nullptr);
        if (descriptor >= 0) return ok;
        if (target < 0 || inPlace == InPlace::refused || !refusedByFolder(errno))
            return io_layer::statusOfOpen(errno);
    }
    return openInPlace(replacement, target, old.kind, descriptor);
}

} // namespace

int begin(const std::string& path, InPlace inPlace, Replacement& replacement, int& descriptor) {
    descriptor = -1;
    replacement = {path, ""};
    if (!io_layer::canBeName(path)) return io_layer::invalidPath;
    int status = followLinks(replacement.target);
    if (status != ok) return status;
    replacement.made = replacement.target + ".unfinished";
    const int target =
        restart([&] { return table.open(replacement.target.c_str(), OpenMode::existing); });
    if (target < 0 && errno != ENOENT) return io_layer::statusOfOpen(errno);
    status = beginWith(replacement, inPlace, target, descriptor);
    if (target >= 0 && descriptor != target) table.close(target);
    if (status != ok) replacement.made.clear();
    return status;
}

int commit(Replacement& replacement) {
    const std::string made = std::exchange(replacement.made, "");
    if (made.empty() || table.rename(made.c_str(), replacement.target.c_str()) == 0) return ok;
    table.remove(made.c_str());
    return io_layer::writeFailed;
}

void discard(Replacement& replacement) {
    if (!replacement.made.empty()) table.remove(replacement.made.c_str());
    replacement.made.clear();
}

} // namespace file_replacement
