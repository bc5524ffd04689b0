#pragma once

#include <cstdint>
#include <string>

#include "tvncommon/io/file_replacement.hpp"
#include "tvncommon/io/system_calls.hpp"

// Files as bytes at positions, for a layout whose parts are not written in their order. Nothing is
// held back: what a call wrote, any later reader finds. Every operation returns a status of the I/O
// layer, 0 when all is well, and none ends the run.
namespace byte_file {

struct File {
    int descriptor = -1; // below 0 when closed
};

// Opens a regular file and tells its size; anything else of that name fails.
int open(const std::string& path, system_calls::OpenMode mode, File& file, std::int64_t& size);

// Opens a new file that takes the place of `path` at `file_replacement::commit`; until then `path`
// stays as it is. What has that name must be a regular file that can be written, or a link to one.
int openBeside(const std::string& path, File& file, file_replacement::Replacement& replacement);

// All of the bytes, at once: the end of the file within them is a failure.
int readAt(const File& file, std::int64_t position, void* into, std::int64_t size);
int writeAt(const File& file, std::int64_t position, const void* from, std::int64_t size);

// Cuts the file at, or fills it with zeros up to, this size.
int truncate(const File& file, std::int64_t size);

// Takes the room on the disk that these bytes will fill, which spares their writes the search. The
// size of the file stays. A disk without that much room fails and keeps what it has.
int reserve(const File& file, std::int64_t position, std::int64_t size);

// Returns once all that was written is on the disk; `syncFolderOf` does it for the names in the
// folder of `path`, which a rename changed. Fine on a file system that has no such thing.
int sync(const File& file);
int syncFolderOf(const std::string& path);

// Fine for a closed file.
int close(File& file);

// Removes a file, if it exists.
int remove(const std::string& path);

} // namespace byte_file
