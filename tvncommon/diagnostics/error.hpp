#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Framed banners and the one way a run ends early. Every banner goes to the logging unit, when one
// is set, and then to the standard error stream.
namespace error {

// Thrown by the procedures that end the run, after their banner is out and all files are closed.
// Only the program's outermost function catches it and turns it into the process status.
struct RunEnded {
    int status = 1;
};

// State of the module; `reset` puts back the values of a program start.
void reset();

// Banner "*** FATAL ERROR, HALTING EXECUTION ***" with the message; ends the run.
[[noreturn]] void fatalError(std::string_view message);

// Banner "*** INPUT ERROR, HALTING EXECUTION ***": what the user gave is wrong; ends the run.
[[noreturn]] void input_error(std::string_view message);

// Banner "***      WARNING MESSAGE      ***"; returns.
void warningMsg(std::string_view message);

// The same three with the text and number of a status of the I/O layer behind the message. They do
// not test the status: 0 too ends the run.
[[noreturn]] void fatalErrorStat(int iostat, std::string_view message);
[[noreturn]] void input_error_stat(int iostat, std::string_view message);
void warningMsgStat(int iostat, std::string_view message);

// End the run when `iostat` is not 0, naming the file.
void checkFileOpen(int iostat, std::string_view filename);
void checkFileRead(int iostat, std::string_view filename);
void checkFileWrite(int iostat, std::string_view filename);

// Ends the run with the allocation banner when `stat` is not 0; `name` is that of the array. Takes
// no memory itself.
void check_alloc(int stat, std::string_view name);

// Writes a banner and returns, for a process that cannot end its run in order: the allocation
// banner for "working memory", or that of an internal error. Takes no memory.
void writeLastBanner(bool memoryExhausted);

// Ends the run with the dimensioning banner when more is requested than the default of the array
// size called `name`.
void user_size_check(std::int32_t requested, std::int32_t defaultValue, std::string_view name);

// Input errors about instructions: one that is none, two that exclude each other, and one that is
// no longer supported, with what to use instead unless that is blank.
[[noreturn]] void unknownCommandError(std::string_view context, std::string_view instruction);
[[noreturn]] void commandConflictError(std::string_view a, std::string_view b);
[[noreturn]] void obsoleteCommandError(std::string_view replacement);

// Writes lines where the banners go; the run goes on. A failure of the logging unit ends it.
void writeLines(std::span<const std::string_view> lines);

// Text of a status number of the I/O layer, empty when the number has none.
std::string ioStatErrorMsg(int iostat);

// From here on banners are also written on this unit (a unit above 0).
void setErrorLoggingFileUnit(int unit);

} // namespace error
