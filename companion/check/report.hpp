#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The result of `meshrake-tool check`: the output of a run of meshrake over a problem, and
// findings, which would end the run or make its plot files differ from those that the user expects.
namespace check {

struct Finding {
    std::string_view kind{};           // for programs, such as "missing_file"
    std::string file{};                // empty if it is not about one file
    int line = 0;                      // of the file, from 1, or 0 for none
    std::vector<std::int32_t> times{}; // indices of the output times, empty for all or none
    std::string text{};                // a sentence without full stop
    bool endsRun = false;
};

// State of a column of a data set at an output time.
enum class CellState : std::uint8_t {
    notRead,         // the output time is not in the plot file
    constant,        // does not change with time, or is computed from the mesh
    present,         // from a file, or computed from one
    missing,         // no file: the values of the first output time are shown
    tooShort,        // the file has too few values
    malformed,       // the header cannot be read
    otherType,       // the header names another type of values
    otherComponents, // the header names another number of components
    otherCount,      // the header names another number of values
    unreadable       // the file cannot be opened
};
struct CellWord {
    char sign;               // in the table of variables
    std::string_view word{}; // in its legend
    std::string_view key{};  // for programs
};
const CellWord& wordOf(CellState state);

// Columns of one variable with the same states.
struct VariableReport {
    std::vector<std::string> names{};
    std::string file{}; // without the index of the output time, empty for computed columns
    std::string type{}; // such as "real8"
    bool ofElements = false;
    std::vector<CellState> cells{}; // one for each entry of Report::times
};

struct DomainReport {
    std::string tag{};
    bool ownNodes = true; // otherwise the nodes are those of pm
    bool isWritten = false;
    std::string remark{};                 // the reason why it is not written
    std::int64_t nodes = 0, elements = 0; // of the mesh
    std::int64_t writtenNodes = 0, writtenElements = 0;
    std::string elementShape{}; // zone type of the plot file
    std::string dataSet{};      // name of the plot file
    std::int64_t zones = 0;     // output times in it, or added to it
    std::int64_t bytes = 0;     // its size, or how much it grows
    bool bytesAreExact = true;
    std::vector<VariableReport> variables{};
};

// A plot of the surface that the control file requests.
struct PlotReport {
    std::string file{};
    std::int64_t nodes = 0, elements = 0;
    std::int64_t zones = 0;
    std::int64_t bytes = 0;
};

// Text of an output time whose time file has a malformed header.
inline constexpr std::string_view unknownTime = "unknown";

struct TimeReport {
    std::int32_t index = 0;
    std::string suffix{};   // index as in file names
    std::string text{};     // the time, as in the plot file
    std::string file{};     // its header has the time
    bool isWritten = false; // the time is in the time window
};

// A line of the control file that has an effect, with its values.
struct Selection {
    std::string text{};
    bool beginsBlock = false;
};

struct Report {
    std::string folder{}, prefix{}, title{};
    std::string controlFile{}; // empty without one, when all options have their defaults
    std::vector<Selection> selections{};
    std::vector<DomainReport> domains{}; // existing ones, in the order of the plot files
    std::vector<PlotReport> plots{};
    std::vector<TimeReport> times{};
    std::vector<std::string> unreadFiles{}; // kinds of result files that no variable reads
    std::int64_t bytesNeeded = 0;           // of all data sets
    std::int64_t bytesFree = -1;            // on the disk, negative if unknown
    std::vector<Finding> findings{};
};

// Returns names with a comma between them.
std::string joined(const std::vector<std::string>& names);

// Returns ascending numbers as a text such as "4, 7 to 9".
std::string rangesText(const std::vector<std::int32_t>& numbers);

} // namespace check
