#include "tvncommon/error.hpp"

#include "tvncommon/io_layer.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

namespace error {

namespace {

struct State {
    int loggingUnit = 0; // banners also go here when above 0
};
State state;

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

std::string_view trimmed(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

int writeTo(int unit, std::initializer_list<std::string_view> lines) {
    int status = io_layer::ok;
    for (const std::string_view line : lines)
        if (status == io_layer::ok) status = io_layer::writeLine(unit, line);
    return status == io_layer::ok ? io_layer::flush(unit) : status;
}

// Status of the logging unit. A standard error stream that cannot take the text is passed over.
int writeToAll(std::initializer_list<std::string_view> lines) {
    const int status = state.loggingUnit > 0 ? writeTo(state.loggingUnit, lines) : io_layer::ok;
    writeTo(io_layer::standardError, lines);
    return status;
}

int banner(std::string_view title, std::string_view message) {
    const std::string stars(title.size(), '*');
    return writeToAll({"", stars, title, stars, "", trimmed(message), ""});
}

[[noreturn]] void endRun() {
    std::string path;
    io_layer::releaseAll(path);
    throw RunEnded{1};
}

std::string withStatus(int iostat, std::string_view message) {
    std::string text(trimmed(message));
    const std::string detail = ioStatErrorMsg(iostat);
    if (!detail.empty()) text += "\nError detail: " + detail;
    return text + "\nError number: " + std::to_string(iostat);
}

void checkFile(int iostat, std::string_view what, std::string_view filename) {
    if (iostat == 0) return;
    fatalErrorStat(iostat, std::string(what) + std::string(trimmed(filename)));
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

void warningMsg(std::string_view message) {
    const int status = banner("***      WARNING MESSAGE      ***", message);
    // The run goes on, so a logging unit that has failed must not pass in silence.
    checkFileWrite(status, io_layer::pathOf(state.loggingUnit));
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

void check_alloc(int stat, std::string_view name) {
    if (stat == 0) return;
    constexpr std::string_view title = "*** ALLOCATION ERROR, HALTING EXECUTION ***";
    const std::string stars(title.size(), '*');
    const std::string failed = "Allocation failed: " + std::string(trimmed(name));
    const std::string number = "Error number: " + std::to_string(stat);
    const std::string detail = ioStatErrorMsg(stat);
    if (detail.empty())
        writeToAll({"", stars, title, stars, "", failed, number, ""});
    else
        writeToAll({"", stars, title, stars, "", failed, "Error detail: " + detail, number, ""});
    endRun();
}

std::string ioStatErrorMsg(int iostat) {
    const auto it = std::find_if(statusTexts.begin(), statusTexts.end(),
                                 [&](const auto& entry) { return entry.first == iostat; });
    return it == statusTexts.end() ? std::string() : std::string(it->second);
}

void setErrorLoggingFileUnit(int unit) {
    state.loggingUnit = unit;
}

} // namespace error
