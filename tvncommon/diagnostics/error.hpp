#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Framed banners, and the end of a run after a failure. Every banner is written to the logging
// unit, if one is set, and then to the standard error stream.
namespace error {

// Thrown by the functions that end the run, after the banner is written and all files are closed.
// Only the outermost function of the program catches it and returns `status` to the system.
struct RunEnded {
    int status = 1;
};

// Restores the state of a program start: no logging unit, banners are written.
void reset();

// Makes later banners append their messages to `messages` instead of being written. With null, they
// are written again. A failure still ends the run. Returns the argument of the previous call.
std::vector<std::string>* collectMessages(std::vector<std::string>* messages);

// Ends the run with the banner "*** FATAL ERROR, HALTING EXECUTION ***" and the message.
[[noreturn]] void fatalError(std::string_view message);

// Ends the run with the banner "*** INPUT ERROR, HALTING EXECUTION ***", for wrong input of the
// user, and the message.
[[noreturn]] void input_error(std::string_view message);

// Writes the banner "***      WARNING MESSAGE      ***" with the message, and returns.
void warningMsg(std::string_view message);

// The same three, with the text and number of a status of the I/O layer after the message. They do
// not test the status: 0 also ends the run.
[[noreturn]] void fatalErrorStat(int iostat, std::string_view message);
[[noreturn]] void input_error_stat(int iostat, std::string_view message);
void warningMsgStat(int iostat, std::string_view message);

// End the run with a banner that names the file, if `iostat` is not 0.
void checkFileOpen(int iostat, std::string_view filename);
void checkFileRead(int iostat, std::string_view filename);
void checkFileWrite(int iostat, std::string_view filename);

// Ends the run with the allocation banner for the array called `name`, if `stat` is not 0.
// Allocates no memory.
void check_alloc(int stat, std::string_view name);

// Writes a banner and returns, for a process that cannot throw an exception. It is the allocation
// banner for "working memory" or the banner of an internal error. Allocates no memory.
void writeLastBanner(bool memoryExhausted);

// Ends the run with the dimensioning banner if more is requested than the default of the array size
// called `name`.
void user_size_check(std::int32_t requested, std::int32_t defaultValue, std::string_view name);

// Input errors about instructions: an unknown one, two that exclude each other, and one that is no
// longer supported, with its replacement unless that is blank.
[[noreturn]] void unknownCommandError(std::string_view context, std::string_view instruction);
[[noreturn]] void commandConflictError(std::string_view a, std::string_view b);
[[noreturn]] void obsoleteCommandError(std::string_view replacement);

// Writes lines to the units of the banners and returns. A failure of the logging unit ends the run.
void writeLines(std::span<const std::string_view> lines);

// Returns the text of a status number of the I/O layer, empty for an unknown number.
std::string ioStatErrorMsg(int iostat);

// Sets the logging unit, or none with 0.
void setErrorLoggingFileUnit(int unit);

} // namespace error
