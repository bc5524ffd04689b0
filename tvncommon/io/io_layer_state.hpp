#pragma once

#include "tvncommon/io/file_replacement.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <limits>
#include <vector>

// What the two halves of the I/O layer share: units and text on the one hand, records on the other.
namespace io_layer {

inline constexpr std::size_t readBufferSize = 32768;
inline constexpr std::int64_t unbounded = std::numeric_limits<std::int64_t>::max();

// The record under the reading position.
struct OpenRecord {
    std::int64_t pieceLength = 0; // payload bytes of the current sub-record
    std::int64_t pieceLeft = 0;   // those not read yet
    bool goesOn = false;          // a further sub-record follows
};

struct Connection {
    int descriptor = -1;
    std::string path;
    bool writing = false;
    bool regular = false;                 // a file on a disk, whose space can be reserved
    std::uint64_t device = 0, number = 0; // identity of the file
    Form form = Form::formatted;
    Flush flushing = Flush::inBlocks;
    std::string held;             // text that is not written yet
    std::vector<char> readBuffer; // allocated at the first read
    std::size_t readBegin = 0;    // unread part of `readBuffer`
    std::size_t readEnd = 0;
    std::int64_t size = 0;     // file size at the open
    std::int64_t position = 0; // bytes taken by the reader
    std::int64_t written = 0;  // bytes handed to the file
    std::int64_t roomEnd = 0;  // end of the room taken on the disk ahead of the writes
    file_replacement::Replacement replacement; // of a file that takes its place when committed
    OpenRecord record;
};

// The unit's file, null when it has none.
Connection* find(int unit);

// What one call gets of the file from `position` on, 0 at its end, below 0 for a failure. The file
// ends where it ended at the open: one that grows is cut there, one that has become shorter fails.
std::ptrdiff_t readSome(const Connection& c, char* into, std::int64_t size, std::int64_t position);

// Fills the empty buffer; it stays empty at the end of the file.
int fillBuffer(Connection& c, std::int64_t position);

} // namespace io_layer
