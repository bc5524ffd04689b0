#pragma once

#include "tvncommon/text/free_form.hpp"

#include <initializer_list>

// Values of instructions, from the control text on `run.controlUnit`.
namespace plot_control {

// Reads each list from a new line. Values that are missing on it are read from the lines after it.
// A value that cannot be read ends the run.
void readValues(std::initializer_list<std::initializer_list<free_form::Item>> lines);

// Ends the run because the control text cannot be read, with the status of the I/O layer.
[[noreturn]] void endRunUnreadable(int status);

// Reads the number of digits of the time index in file names from a new line. A value that is not a
// number from 4 to 10 ends the run.
void readOutputFileSuffix();

} // namespace plot_control
