#pragma once

namespace plot_control {

// Copies the control text of one open unit to another and rewinds that. Blank lines and lines that
// begin with "!" are dropped, leading and trailing blanks too; a line that begins with "include" is
// replaced by the lines of the file that it names, of which none includes a further one. Lines are
// cut at 256 characters. An include file that is missing, and a failed read of any of the
// files, end the run.
void strip_comments(int inputUnit, int outputUnit);

} // namespace plot_control
