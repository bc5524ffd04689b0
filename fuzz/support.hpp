#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

// What the targets share: a file system in memory, a small problem, and runs over it whose end is
// checked. A check that fails aborts the process, which is what a fuzzer looks for.
namespace fuzz {

using Files = std::map<std::string, std::string>; // contents by name
inline const Files noFiles;

// Aborts with this text unless it holds.
void require(bool holds, std::string_view what);

// The problem that make_problem wrote when this was built: prefix "t", all domains and variables,
// the first `times` (at most 3) of its output times. It has no control file.
Files problem(int times = 2);

// The part of it that pm and olf have, with few variables.
Files smallProblem(int times = 2);

// Sets what the file system holds: `before`, which must outlive the use, with the changed files in
// place of its own or besides.
void setFiles(const Files& before, const Files& changed);
Files files();

// Makes the call; true if it ended the run. Then there must be a banner, and no file open but those
// of a binary data set.
bool endsRun(const std::function<void()>& call);

// A whole run over the files of `setFiles`; returns its status after these checks: it is 0 or 1,
// with the words of a normal exit or with a banner. No file stays open but those of a binary data
// set. Every binary data set of a run with status 0 is readable. One run in eight is made twice and
// must do the same.
int run(const Files& before, const Files& changed, bool legacyVtk = false);

// An input for files of a problem: a line with a word and the name of a file, then any number of
// edits: offset (2 bytes, little-endian), bytes to remove (1), bytes to insert (1), and these. An
// offset beyond the end is the end; a count of 255 removes all of the rest. Adds the edited file to
// `changed` and returns the word, which is empty if there is no such file.
std::string edit(const Files& files, std::string_view input, Files& changed);

} // namespace fuzz
