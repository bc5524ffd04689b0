#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

// A file system in memory, a small problem, and checked runs. A failed check aborts the process,
// which the fuzzer reports as a finding.
namespace fuzz {

using Files = std::map<std::string, std::string>; // contents by name
inline const Files noFiles;

// Aborts with this text unless the condition is true.
void require(bool condition, std::string_view what);

// Returns the files of the problem that make_problem wrote during the build: prefix "t", all
// domains and variables, the first `times` (at most 3) output times. It has no control file.
Files problem(int times = 2);

// Returns the files of pm and olf in that problem, with few variables.
Files smallProblem(int times = 2);

// Sets the contents of the file system: `before`, which must outlive its use, with the changed
// files added or replaced.
void setFiles(const Files& before, const Files& changed);

// Returns the current contents of the file system.
Files files();

// Calls `call` and returns true if it ended the run. Checks that a banner was then written, and
// that only files of a binary data set are still open.
bool endsRun(const std::function<void()>& call);

// Runs the program with the files of `setFiles` and returns its status, which must be 0 with the
// text of a normal exit, or 1 with a banner. Only files of a binary data set may still be open.
// After status 0, every binary data set must be readable. One run in eight is repeated and must
// have the same output.
int run(const Files& before, const Files& changed, bool legacyVtk = false);

// Applies an input for a file of a problem. It is a line with a word and the name of the file, then
// any number of edits: offset (2 bytes, little-endian), number of bytes to remove (1 byte), number
// of bytes to insert (1 byte), and these bytes. An offset beyond the end means the end. A number of
// 255 removes the rest of the file. Adds the edited file to `changed` and returns the word, which
// is empty if the file does not exist.
std::string edit(const Files& files, std::string_view input, Files& changed);

} // namespace fuzz
