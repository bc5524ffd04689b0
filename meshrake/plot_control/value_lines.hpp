#pragma once

#include "tvncommon/text/free_form.hpp"

#include <initializer_list>

// Values of instructions, from the control text on `run.controlUnit`.
namespace plot_control {

// Reads each list from a line of its own; values that are missing there are on the lines after it.
// One that cannot be read ends the run.
void readValues(std::initializer_list<std::initializer_list<free_form::Item>> lines);

// Ends the run because the control text cannot be read, with the status of the I/O layer.
[[noreturn]] void endUnreadable(int status);

// Reads one line with the number of digits of the time index in file names. What is not a number
// from 4 to 10 ends the run.
void readOutputFileSuffix();

} // namespace plot_control
