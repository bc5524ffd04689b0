#include "tvncommon/diagnostics/warning_messages.hpp"

#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/text/StringHelpers.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace warning_messages {

namespace {

enum class Mode { off, now, later };

struct State {
    Mode mode = Mode::later;
    std::string currentCmd;
    std::vector<std::string> queue; // of which the first `count` are in use
    std::int32_t count = 0;
};
State state;

std::string trimmed(std::string_view text) {
    return std::string(StringHelpers::trimRight(text));
}

// Returns the lines to print. The caller writes an empty line after each.
std::vector<std::string> queueLines() {
    if (state.count == 0) return {"No warnings were raised."};
    std::vector<std::string> lines{"There was 1 warning raised."};
    if (state.count > 1)
        lines = {"There were " + std::to_string(state.count) + " warnings raised."};
    for (std::int32_t i = 0; i < state.count; ++i)
        lines.push_back(std::to_string(i + 1) + ". " + state.queue[static_cast<std::size_t>(i)]);
    return lines;
}

} // namespace

void reset() {
    state = {};
}

void warnOff() {
    state.mode = Mode::off;
}

void warnNow() {
    state.mode = Mode::now;
}

void warnLater() {
    state.mode = Mode::later;
}

void setCurrentCmd(std::string_view cmd) {
    state.currentCmd = trimmed(cmd);
}

void clearCurrentCmd() {
    state.currentCmd.clear();
}

void addWarning(std::string_view type, std::string_view cmd, std::string_view msg) {
    if (state.mode == Mode::off) return;
    std::string text = "Type: " + trimmed(type);
    if (!trimmed(cmd).empty()) text += "\nIssuing command: " + trimmed(cmd);
    text += "\nMessage: " + trimmed(msg);
    if (state.mode == Mode::now)
        error::warningMsg(text);
    else
        ArrayHelpers::pushback(text, state.count, state.queue, "Warning message queue");
}

void deprecationWarn(std::string_view cmd, std::optional<std::string_view> replacement) {
    std::string msg = "The command \"" + trimmed(cmd) +
                      "\" has been deprecated and will be removed in a future release.";
    if (replacement)
        msg += "\n         Please consider the command(s): \"" + trimmed(*replacement) + "\"";
    addWarning("Deprecation Warning", cmd, msg);
}

void inputWarn(std::string_view msg) {
    addWarning("Input Warning", state.currentCmd, msg);
}

void genericWarn(std::string_view msg) {
    addWarning("Generic Warning", state.currentCmd, msg);
}

void printWarnings() {
    if (state.mode != Mode::later) return;
    const std::vector<std::string> texts = queueLines();
    std::vector<std::string_view> lines{""};
    for (const std::string& text : texts) {
        lines.emplace_back(text);
        lines.emplace_back("");
    }
    error::writeLines(lines);
}

} // namespace warning_messages
