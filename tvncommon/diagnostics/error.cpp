#include "tvncommon/diagnostics/error.hpp"

#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/io/system_calls.hpp"
#include "tvncommon/text/StringHelpers.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <utility>

namespace error {

using StringHelpers::trimRight;

namespace {

struct State {
    int loggingUnit = 0;                          // 0: none
    std::vector<std::string>* messages = nullptr; // null: banners are written
};
constinit State state;

constexpr std::array<std::pair<int, std::string_view>, 13> statusTexts{{
    {-2, "End-of-record encountered on read"},
    {-1, "End-of-file encountered on read"},
    {9, "Permission to access file denied"},
    {24, "End-of-file encountered during execution of read"},
    {29, "File with the specified name could not be found"},
    {30, "Unknown error encountered opening file"},
    {38, "Error encountered during write statement"},
    {39, "Error encountered during read statement"},
    {41, "Insufficient virtual memory"},
    {43, "Invalid file name or pathname"},
    {59, "Invalid data format during list-directed input"},
    {64, "Invalid character during formatted input"},
    {603, "Number of open files allowed by OS exceeded"},
}};

// Banners for a process that has no memory to compose them.
constexpr std::string_view allocationTitle = "\n*******************************************\n"
                                             "*** ALLOCATION ERROR, HALTING EXECUTION ***\n"
                                             "*******************************************\n\n"
                                             "Allocation failed: ";
constexpr std::string_view workingMemory = "working memory\n"
                                           "Error detail: Insufficient virtual memory\n"
                                           "Error number: 41\n\n";
constexpr std::string_view internalError = "\n**************************************\n"
                                           "*** FATAL ERROR, HALTING EXECUTION ***\n"
                                           "**************************************\n\n"
                                           "Internal error\n\n";

std::string_view statusText(int iostat) {
    const auto it = std::find_if(statusTexts.begin(), statusTexts.end(),
                                 [&](const auto& entry) { return entry.first == iostat; });
    return it == statusTexts.end() ? std::string_view() : it->second;
}

int writeTo(int unit, std::span<const std::string_view> lines) {
    int status = io_layer::ok;
    for (const std::string_view line : lines)
        if (status == io_layer::ok) status = io_layer::writeLine(unit, line);
    return status == io_layer::ok ? io_layer::flush(unit) : status;
}

// Returns the status of the logging unit. A failure of the standard error stream is ignored,
// because it cannot be reported anywhere.
int writeToAll(std::span<const std::string_view> lines) {
    const int status = state.loggingUnit > 0 ? writeTo(state.loggingUnit, lines) : io_layer::ok;
    writeTo(io_layer::standardError, lines);
    return status;
}

int writeToAll(std::initializer_list<std::string_view> lines) {
    return writeToAll(std::span(lines.begin(), lines.size()));
}

void writePieces(int unit, std::span<const std::string_view> pieces) {
    for (const std::string_view piece : pieces)
        io_layer::writeBlock(unit, piece.data(), piece.size());
}

int banner(std::string_view title, std::string_view message) {
    if (state.messages) {
        state.messages->emplace_back(trimRight(message));
        return io_layer::ok;
    }
    const std::string stars(title.size(), '*');
    return writeToAll({"", stars, title, stars, "", trimRight(message), ""});
}

[[noreturn]] void endRun() {
    std::string path;
    io_layer::releaseAll(path);
    throw RunEnded{1};
}

std::string withStatus(int iostat, std::string_view message) {
    std::string text(trimRight(message));
    const std::string detail = ioStatErrorMsg(iostat);
    if (!detail.empty()) text += "\nError detail: " + detail;
    return text + "\nError number: " + std::to_string(iostat);
}

void checkFile(int iostat, std::string_view what, std::string_view filename) {
    if (iostat == 0) return;
    fatalErrorStat(iostat, std::string(what) + std::string(trimRight(filename)));
}

// For functions that return: the run continues, so a failure of the logging unit must end it.
void checkLog(int status) {
    checkFileWrite(status, io_layer::pathOf(state.loggingUnit));
}

} // namespace

void reset() {
    state = {};
}

void fatalError(std::string_view message) {
    banner("*** FATAL ERROR, HALTING EXECUTION ***", message);
    endRun();
}

void input_error(std::string_view message) {
    banner("*** INPUT ERROR, HALTING EXECUTION ***", message);
    endRun();
}

std::vector<std::string>* collectMessages(std::vector<std::string>* messages) {
    return std::exchange(state.messages, messages);
}

void warningMsg(std::string_view message) {
    checkLog(banner("***      WARNING MESSAGE      ***", message));
}

void writeLines(std::span<const std::string_view> lines) {
    checkLog(writeToAll(lines));
}

void fatalErrorStat(int iostat, std::string_view message) {
    fatalError(withStatus(iostat, message));
}

void input_error_stat(int iostat, std::string_view message) {
    input_error(withStatus(iostat, message));
}

void warningMsgStat(int iostat, std::string_view message) {
    warningMsg(withStatus(iostat, message));
}

void checkFileOpen(int iostat, std::string_view filename) {
    checkFile(iostat, "Failed to open file: ", filename);
}

void checkFileRead(int iostat, std::string_view filename) {
    checkFile(iostat, "Error reading file: ", filename);
}

void checkFileWrite(int iostat, std::string_view filename) {
    checkFile(iostat, "Error writing file: ", filename);
}

// Writes the pieces one by one, because a composed text would need memory.
void check_alloc(int stat, std::string_view name) {
    if (stat == 0) return;
    if (state.messages) {
        state.messages->push_back(withStatus(stat, "Allocation failed: " + std::string(name)));
        endRun();
    }
    const std::string_view detail = statusText(stat);
    char digits[16];
    const char* end = std::to_chars(digits, digits + sizeof digits, stat).ptr;
    const std::string_view number(digits, static_cast<std::size_t>(end - digits));
    const std::string_view pieces[] = {
        allocationTitle, trimRight(name),    detail.empty() ? "" : "\nError detail: ",
        detail,          "\nError number: ", number,
        "\n\n"};
    if (state.loggingUnit > 0) writePieces(state.loggingUnit, pieces);
    writePieces(io_layer::standardError, pieces);
    endRun();
}

void writeLastBanner(bool memoryExhausted) {
    const std::string_view pieces[] = {memoryExhausted ? allocationTitle : internalError,
                                       memoryExhausted ? workingMemory : ""};
    for (const std::string_view piece : pieces) {
        if (state.loggingUnit > 0)
            io_layer::writeBlock(state.loggingUnit, piece.data(), piece.size());
        system_calls::table.write(2, piece.data(), piece.size());
    }
}

void user_size_check(std::int32_t requested, std::int32_t defaultValue, std::string_view name) {
    if (requested <= defaultValue) return;
    constexpr std::string_view title = "*** DIMENSIONING ERROR, HALTING EXECUTION ***";
    const std::string stars(title.size(), '*');
    const std::string array = " " + std::string(trimRight(name));
    const std::string ours = "   Default value:   " + std::to_string(defaultValue);
    const std::string theirs = "   Requested value: " + std::to_string(requested);
    writeToAll({"", stars, title, stars, "", " Pre-processor request exceeds default array size",
                "", array, ours, theirs, "",
                " Increase the default value in file array_sizes.default", ""});
    endRun();
}

void unknownCommandError(std::string_view context, std::string_view instruction) {
    input_error(std::string(trimRight(context)) +
                ": Unrecognized instruction.\nInstruction: " + std::string(instruction));
}

void commandConflictError(std::string_view a, std::string_view b) {
    input_error("Command conflict: \"" + std::string(trimRight(a)) + "\" \"" +
                std::string(trimRight(b)) + "\"");
}

void obsoleteCommandError(std::string_view replacement) {
    std::string message = "This command is obsolete and no longer supported.\n";
    if (trimRight(replacement).empty())
        message += "Please remove this command and rerun skiv.";
    else
        message += "Please use this command instead: " + std::string(replacement);
    input_error(message);
}

std::string ioStatErrorMsg(int iostat) {
    return std::string(statusText(iostat));
}

void setErrorLoggingFileUnit(int unit) {
    state.loggingUnit = unit;
}

} // namespace error
