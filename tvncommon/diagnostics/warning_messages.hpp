#pragma once

#include <optional>
#include <string_view>

// Warnings that are shown at once, gathered until somebody asks for them, or dropped. Each tells
// its type, the command that raised it, unless that is blank, and its message.
namespace warning_messages {

// State of the module: warnings are gathered, none is there, no command. `reset` puts that back.
void reset();

// What becomes of the warnings from here on: nothing, a banner, or a place in the queue.
void warnOff();
void warnNow();
void warnLater();

// The command that input and generic warnings name.
void setCurrentCmd(std::string_view cmd);
void clearCurrentCmd();

void addWarning(std::string_view type, std::string_view cmd, std::string_view msg);
void deprecationWarn(std::string_view cmd, std::optional<std::string_view> replacement = {});
void inputWarn(std::string_view msg);
void genericWarn(std::string_view msg);

// Writes the queue where the banners go, and keeps it. Does nothing unless warnings are gathered.
void printWarnings();

} // namespace warning_messages
