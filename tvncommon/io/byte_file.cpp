#include "tvncommon/io/byte_file.hpp"

#include "tvncommon/io/io_layer.hpp"

#include <cerrno>

namespace byte_file {

using io_layer::ok;
using system_calls::restart;
using system_calls::table;

int open(const std::string& path, system_calls::OpenMode mode, File& file, std::int64_t& size) {
    close(file);
    if (!io_layer::canBeName(path)) return io_layer::invalidPath;
    file.descriptor = restart([&] { return table.open(path.c_str(), mode); });
    if (file.descriptor < 0) return io_layer::statusOfOpen(errno);
    system_calls::FileInfo info;
    const bool known = table.fileInfo(file.descriptor, info) == 0;
    if (!known || info.kind != system_calls::FileKind::regular) {
        close(file);
        return io_layer::openFailed;
    }
    size = info.size;
    return ok;
}

int openForCommit(const std::string& path, File& file, file_replacement::Replacement& replacement) {
    close(file);
    return file_replacement::begin(path, file_replacement::InPlace::refused, replacement,
                                   file.descriptor);
}

int readAt(const File& file, std::int64_t position, void* into, std::int64_t size) {
    char* target = static_cast<char*>(into);
    while (size > 0) {
        const std::ptrdiff_t n =
            table.readAt(file.descriptor, target, static_cast<std::size_t>(size), position);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return io_layer::readFailed;
        target += n;
        position += n;
        size -= n;
    }
    return ok;
}

int writeAt(const File& file, std::int64_t position, const void* from, std::int64_t size) {
    const char* source = static_cast<const char*>(from);
    while (size > 0) {
        const std::ptrdiff_t n =
            table.writeAt(file.descriptor, source, static_cast<std::size_t>(size), position);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return io_layer::writeFailed;
        source += n;
        position += n;
        size -= n;
    }
    return ok;
}

int truncate(const File& file, std::int64_t size) {
    const int result = restart([&] { return table.truncate(file.descriptor, size); });
    return result == 0 ? ok : io_layer::writeFailed;
}

int reserve(const File& file, std::int64_t position, std::int64_t size) {
    if (size == 0) return ok;
    const int result = restart([&] { return table.reserve(file.descriptor, position, size); });
    return result == 0 ? ok : io_layer::writeFailed;
}

void startSync(const File& file, std::int64_t position, std::int64_t size) {
    table.startSync(file.descriptor, position, size);
}

int sync(const File& file) {
    const bool synced = restart([&] { return table.sync(file.descriptor); }) == 0;
    return synced || errno == EINVAL || errno == ENOSYS ? ok : io_layer::writeFailed;
}

int syncFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    File file;
    file.descriptor =
        restart([&] { return table.open(folder.c_str(), system_calls::OpenMode::read); });
    if (file.descriptor < 0) return io_layer::writeFailed;
    const int status = sync(file);
    close(file);
    return status;
}

int close(File& file) {
    if (file.descriptor < 0) return ok;
    const int status = table.close(file.descriptor) == 0 ? ok : io_layer::writeFailed;
    file.descriptor = -1;
    return status;
}

int remove(const std::string& path) {
    return table.remove(path.c_str()) == 0 || errno == ENOENT ? ok : io_layer::writeFailed;
}

} // namespace byte_file
