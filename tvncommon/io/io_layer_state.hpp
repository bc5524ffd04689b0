#pragma once

#include "tvncommon/io/file_replacement.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <limits>
#include <vector>

// State that the units and texts of the I/O layer share with its records.
namespace io_layer {

inline constexpr std::size_t readBufferSize = 32768;
inline constexpr std::int64_t unbounded = std::numeric_limits<std::int64_t>::max();

// The record at the read position.
struct OpenRecord {
    std::int64_t subRecordLength = 0; // payload bytes of the current sub-record
    std::int64_t subRecordLeft = 0;   // payload bytes not read yet
    bool continues = false;           // a further sub-record follows
};

struct Connection {
    int descriptor = -1;
    std::string path;
    bool writing = false;
    bool regular = false;                 // a file on a disk, not a device or pipe
    std::uint64_t device = 0, number = 0; // identity of the file
    Form form = Form::formatted;
    Flush flushing = Flush::inBlocks;
    std::string pending;          // text that is not written yet
    std::vector<char> readBuffer; // allocated at the first read
    std::size_t readBegin = 0;    // unread part of `readBuffer`
    std::size_t readEnd = 0;
    std::int64_t size = 0;            // file size at the open, or `unbounded`
    bool infoKnown = true;            // regular, device, number and size are set
    std::int64_t position = 0;        // bytes that callers have read
    std::int64_t written = 0;         // bytes written to the file
    std::int64_t preallocatedEnd = 0; // end of the disk space that is reserved for later writes
    file_replacement::Replacement replacement; // of a file that is opened for commit
    OpenRecord record;
};

// Returns the unit's file, or null.
Connection* find(int unit);

// Writes pending text and clears it, also after a failure.
int flushPending(Connection& c);

// Sets the members that `infoKnown` lists, if the open has not set them.
void completeInfo(Connection& c);

// Reads at `position` what one system call returns, and returns the number of bytes: 0 at the end
// of the file, below 0 for a failure. The file ends where it ended at the open: bytes appended
// since are not read, and a file that has become shorter is a failure.
std::ptrdiff_t readSome(const Connection& c, char* into, std::int64_t size, std::int64_t position);

// Fills the empty read buffer. At the end of the file it stays empty.
int fillBuffer(Connection& c, std::int64_t position);

} // namespace io_layer
