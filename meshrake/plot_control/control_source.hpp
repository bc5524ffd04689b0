#pragma once

#include <string>
#include <string_view>

namespace plot_control {

// What a line is for the reader of the control text. Lines that hold values, and lines outside of
// sections that are skipped, are not reported.
enum class LineUse { instruction, option, blockBegin, sectionEnd, unrecognized };

// A control text in memory, in place of that on `run.controlUnit`. Each function is called during
// the reading of the text.
struct ControlSource {
    int (*readLine)(std::string& line); // next line; returns a status of the I/O layer
    void (*rewind)();
    void (*noteUse)(LineUse use); // of the line that was read last
    void (*valuesRead)();         // the values of the instruction are complete
};

// Read the control text of the run: `run.controlSource` if it is set, else `run.controlUnit`.
int readControlLine(std::string& line); // returns a status of the I/O layer
void rewindControl();

// No effect without `run.controlSource`.
void noteUse(LineUse use);
void noteValuesRead();

} // namespace plot_control
