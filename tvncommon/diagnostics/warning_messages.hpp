#pragma once

#include <optional>
#include <string_view>

// Warnings that are shown at once, collected until `printWarnings`, or dropped. Each shows its
// type, its message and, unless that is blank, the command that raised it.
namespace warning_messages {

// Restores the state of a program start: warnings are collected, there are none, and no command is
// set.
void reset();

// Warnings after the call are dropped, shown as banners at once, or collected, in this order.
void warnOff();
void warnNow();
void warnLater();

// Set the command that input and generic warnings show.
void setCurrentCmd(std::string_view cmd);
void clearCurrentCmd();

void addWarning(std::string_view type, std::string_view cmd, std::string_view msg);
void deprecationWarn(std::string_view cmd, std::optional<std::string_view> replacement = {});
void inputWarn(std::string_view msg);
void genericWarn(std::string_view msg);

// Writes the collected warnings to the units of the banners, and keeps them. Does nothing unless
// warnings are collected.
void printWarnings();

} // namespace warning_messages
