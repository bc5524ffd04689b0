#include "tvncommon/io/file_replacement.hpp"

#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cerrno>
#include <utility>

namespace file_replacement {

namespace {

using io_layer::ok;
using system_calls::FileInfo;
using system_calls::FileKind;
using system_calls::OpenMode;
using system_calls::restart;
using system_calls::table;

constexpr int maximumLinks = 40; // as many as the system follows
constexpr std::size_t maximumLinkLength = 4096;
constexpr int maximumAttempts = 100; // to create a file that other processes remove or lock

// Replaces `name` by the name of the file that it links to, even if that does not exist.
int followLinks(std::string& name) {
    for (int links = 0; links <= maximumLinks; ++links) {
        std::string target(maximumLinkLength, '\0');
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

// True if no file of this name or with these permissions can be created in the folder.
bool refusedByFolder(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ENAMETOOLONG;
}

// Locks the open file. Returns false if another process has the lock, or has removed or renamed the
// file since the open. On a file system without locks only the name is compared.
bool lockUnchanged(int descriptor, const std::string& name) {
    const bool locked = restart([=] { return table.lock(descriptor, false); }) == 0;
    if (!locked && errno == EWOULDBLOCK) return false;
    FileInfo opened, named;
    return table.fileInfo(descriptor, opened) == 0 &&
           table.fileInfoOfName(name.c_str(), named) == 0 && opened.device == named.device &&
           opened.number == named.number;
}

// True for the `errno` of an open for writing of a folder, a pipe, a broken or circular link, or a
// file of another user. None of these can be locked; they are removed if the system permits it.
bool cannotBeLocked(int error) {
    return error == ENOENT || error == EISDIR || error == ENXIO || error == ELOOP ||
           error == EACCES;
}

// Removes an existing file of this name, unless another process holds its lock.
int removeLeftOver(const std::string& newFile) {
    const int descriptor = restart([&] { return table.open(newFile.c_str(), OpenMode::existing); });
    if (descriptor < 0 && !cannotBeLocked(errno)) return -1;
    const bool removable = descriptor < 0 || lockUnchanged(descriptor, newFile);
    const int result = removable ? table.remove(newFile.c_str()) : 0;
    const int error = errno;
    if (descriptor >= 0) table.close(descriptor);
    errno = error;
    return result == 0 || error == ENOENT ? 0 : -1;
}

// Creates and locks the new file. Runs of several problems in one folder share `batch.pfx`: the
// lock protects the new file of one run from the others until it has its final name. Fails with
// EEXIST while another process holds the lock.
int createLocked(const std::string& newFile) {
    for (int attempt = 1;; ++attempt) {
        const int descriptor =
            restart([&] { return table.open(newFile.c_str(), OpenMode::create); });
        if (descriptor >= 0 && lockUnchanged(descriptor, newFile)) return descriptor;
        if (descriptor >= 0) table.close(descriptor);
        if (descriptor < 0 && errno != EEXIST) return -1;
        if (attempt == maximumAttempts) return errno = EEXIST, -1;
        if (removeLeftOver(newFile) != 0) return -1;
    }
}

// Creates the new file with the permissions of `old`, if given. Returns its descriptor, or -1 with
// `errno` on failure.
int create(const std::string& newFile, const FileInfo* old) {
    const int descriptor = createLocked(newFile);
    if (descriptor < 0 || !old) return descriptor;
    FileInfo info;
    if (table.fileInfo(descriptor, info) == 0 &&
        (info.permissions == old->permissions ||
         table.setPermissions(descriptor, old->permissions) == 0))
        return descriptor;
    const int error = errno;
    table.close(descriptor);
    table.remove(newFile.c_str());
    errno = error;
    return -1;
}

// Uses the descriptor of the target. A regular file is emptied; a device or pipe has no size.
int openInPlace(Replacement& replacement, int target, FileKind kind, int& descriptor) {
    replacement.newFile.clear();
    if (kind == FileKind::regular && restart([=] { return table.truncate(target, 0); }) != 0)
        return io_layer::openFailed;
    descriptor = target;
    return ok;
}

int openNewOrInPlace(Replacement& replacement, InPlace inPlace, int target, int& descriptor) {
    FileInfo old;
    if (target >= 0 && table.fileInfo(target, old) != 0) return io_layer::openFailed;
    const bool special = target >= 0 && old.kind != FileKind::regular;
    if (special && inPlace == InPlace::refused) return io_layer::openFailed;
    if (!special) {
        descriptor = create(replacement.newFile, target >= 0 ? &old : nullptr);
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
    replacement.newFile = replacement.target + ".unfinished";
    const int target =
        restart([&] { return table.open(replacement.target.c_str(), OpenMode::existing); });
    if (target < 0 && errno != ENOENT) return io_layer::statusOfOpen(errno);
    status = openNewOrInPlace(replacement, inPlace, target, descriptor);
    if (target >= 0 && descriptor != target) table.close(target);
    if (status != ok) replacement.newFile.clear();
    return status;
}

int commit(Replacement& replacement) {
    const std::string newFile = std::exchange(replacement.newFile, "");
    if (newFile.empty() || table.rename(newFile.c_str(), replacement.target.c_str()) == 0)
        return ok;
    table.remove(newFile.c_str());
    return io_layer::writeFailed;
}

void discard(Replacement& replacement) {
    if (!replacement.newFile.empty()) table.remove(replacement.newFile.c_str());
    replacement.newFile.clear();
}

} // namespace file_replacement
