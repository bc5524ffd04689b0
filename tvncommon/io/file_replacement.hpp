#pragma once

#include <string>

// Files that a later run reads back. A new one is written beside the file whose place it takes when
// it is whole, so that a run that fails or is killed leaves the old file or none. Every operation
// returns a status of the I/O layer, and none ends the run.
namespace file_replacement {

struct Replacement {
    std::string target; // the file that is replaced, with all links of its name followed
    std::string made;   // the new file; empty when the target is written in place, or at the end
};

// Where the new file cannot be made although the target can be written.
enum class InPlace { refused, permitted };

// Opens a new file for writing, "<target>.unfinished", in the folder of the target, and locks it. A
// left-over of that name is removed, never followed; one that another process has locked, because
// it is still writing it, is a failure. The new file gets the permissions of a target that exists,
// which must be writable, and links to it stay. With `InPlace::permitted` a device or pipe is
// opened itself, and an existing file is emptied and written in place where its folder takes no new
// file. `descriptor` also reads unless the target is written in place.
int begin(const std::string& path, InPlace inPlace, Replacement& replacement, int& descriptor);

// Puts the new file in the place of the target; its data must be written, and its descriptor, which
// holds the lock, still open. A failure removes it.
int commit(Replacement& replacement);

// Removes the new file.
void discard(Replacement& replacement);

} // namespace file_replacement
