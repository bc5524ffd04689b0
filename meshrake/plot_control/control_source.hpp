#pragma once

#include <string>
#include <string_view>

namespace plot_control {

// The meaning of a line of the control text. Lines of values, and skipped lines outside of
// sections, have none and are not reported.
enum class LineUse { instruction, option, blockBegin, sectionEnd, unrecognized };

// A control text in memory, which replaces that on `run.controlUnit`, and functions that receive
// what its lines mean.
struct ControlSource {
    int (*readLine)(std::string& line); // reads the next line, returns a status of the I/O layer
    void (*rewind)();                   // the next line is the first one again
    void (*noteUse)(LineUse use);       // receives the meaning of the line that was read last
    void (*valuesRead)();               // called when the values of an instruction are complete
};

// Reads the next line of `run.controlSource` if it is set, otherwise of `run.controlUnit`. Returns
// a status of the I/O layer.
int readControlLine(std::string& line);

// Continues at the first line of the same text.
void rewindControl();

// Call the functions of `run.controlSource`. They have no effect if it is not set.
void noteUse(LineUse use);
void noteValuesRead();

} // namespace plot_control
