#pragma once

#include <cstdint>
#include <string>

#include "tvncommon/io/file_replacement.hpp"
#include "tvncommon/io/system_calls.hpp"

// Files that are read and written at byte positions, for a layout whose parts are not written in
// their order. Nothing is buffered: after a call returns, a reader finds what it wrote. Every
// operation returns a status of the I/O layer, 0 for success, and none ends the run.
namespace byte_file {

struct File {
    int descriptor = -1; // below 0 when closed
};

// Opens a regular file and sets `size` to its size in bytes. A folder, device or pipe of that name
// is a failure.
int open(const std::string& path, system_calls::OpenMode mode, File& file, std::int64_t& size);

// Opens a new file that replaces `path` at `file_replacement::commit`; until then `path` is not
// changed. If `path` exists, it must be a regular file that can be written, or a link to one.
int openForCommit(const std::string& path, File& file, file_replacement::Replacement& replacement);

// Read or write all of the bytes. A file that ends before the last byte to read is a failure.
int readAt(const File& file, std::int64_t position, void* into, std::int64_t size);
int writeAt(const File& file, std::int64_t position, const void* from, std::int64_t size);

// Changes the size of the file; added bytes are zeros.
int truncate(const File& file, std::int64_t size);

// Reserves disk space for these bytes, so that their writes do not search for free blocks. The size
// of the file does not change. Fails if the disk has less free space; part of it may then be
// reserved.
int reserve(const File& file, std::int64_t position, std::int64_t size);

// Starts to write these bytes to the disk, so that a later `sync` has less to wait for. A failure
// is left to that `sync`.
void startSync(const File& file, std::int64_t position, std::int64_t size);

// `sync` returns when all that was written to the file is on the disk. `syncFolderOf` does this for
// the folder of `path`, whose names a rename has changed. A file system that cannot sync counts as
// success.
int sync(const File& file);
int syncFolderOf(const std::string& path);

// Succeeds for a closed file.
int close(File& file);

// Removes a file, if it exists.
int remove(const std::string& path);

} // namespace byte_file
