#pragma once

#include <string>

// Atomic replacement of files that a later run reads. The new file is written under another name in
// the same folder and renamed when it is complete, so a run that fails or is killed leaves the old
// file or none. Every operation returns a status of the I/O layer, and none ends the run.
namespace file_replacement {

struct Replacement {
    std::string target;  // the file that is replaced, after all links of its name were followed
    std::string newFile; // name of the new file; empty if written in place or after its removal
};

// Whether a target that can be written may be written in place if no new file can be created.
enum class InPlace { refused, permitted };

// Creates "<target>.unfinished" in the folder of the target, opens it for writing and locks it.
// - An unfinished file of an earlier run is removed; a link of that name is not followed. A file
//   that another process has locked, because it is still writing it, is a failure.
// - An existing target must be writable. The new file gets its permissions. If `path` is a link,
//   the link stays and the file that it links to is replaced.
// - With `InPlace::permitted` a device or pipe is opened itself. So is an existing file in a folder
//   where no file can be created; it is emptied.
// `descriptor` can also read, unless the target is written in place.
int begin(const std::string& path, InPlace inPlace, Replacement& replacement, int& descriptor);

// Renames the new file to the target. Its data must be written, and its descriptor, which holds the
// lock, still open. After a failure the new file is removed.
int commit(Replacement& replacement);

// Removes the new file.
void discard(Replacement& replacement);

} // namespace file_replacement
