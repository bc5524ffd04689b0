#pragma once

#include <cstdint>
#include <string>

#include "tvncommon/io/file_replacement.hpp"
#include "tvncommon/io/system_calls.hpp"

// Files read and written at byte positions, for a layout whose parts are not written in their
// order. Nothing is buffered: a reader finds what a call wrote as soon as the call returns. Every
// operation returns a status of the I/O layer, 0 for success, and none ends the run.
namespace byte_file {

struct File {
    int descriptor = -1; // below 0 when closed
};

// Opens a regular file and returns its size in bytes; anything else of that name fails.
int open(const std::string& path, system_calls::OpenMode mode, File& file, std::int64_t& size);

// Opens a new file that replaces `path` at `file_replacement::commit`; until then `path` is not
// changed. If `path` exists, it must be a regular file that can be written, or a link to one.
int openForCommit(const std::string& path, File& file, file_replacement::Replacement& replacement);

// Read or write all of the bytes; a file that ends within them is a failure.
int readAt(const File& file, std::int64_t position, void* into, std::int64_t size);
int writeAt(const File& file, std::int64_t position, const void* from, std::int64_t size);

// Changes the size of the file; added bytes are zeros.
int truncate(const File& file, std::int64_t size);

// Reserves disk space for these bytes, so that their writes need not search for free blocks. The
// size of the file does not change. Fails where the disk has less free space; part of it may be
// reserved then.
int reserve(const File& file, std::int64_t position, std::int64_t size);

// `sync` returns once all that was written to the file is on the disk, `syncFolderOf` once the
// names in the folder of `path` are, which a rename has changed. A file system that cannot sync
// counts as success.
int sync(const File& file);
int syncFolderOf(const std::string& path);

// Succeeds for a closed file.
int close(File& file);

// Removes a file, if it exists.
int remove(const std::string& path);

} // namespace byte_file
