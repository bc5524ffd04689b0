#pragma once

#include "meshrake/model/domain.hpp"

#include <array>
#include <span>
#include <string>
#include <string_view>

// Reads result files into columns and writes the columns into zones. The same steps serve every
// variable; a row of the variable table gives what differs.
//
// A variable is in a data set if its file exists in the first pass. At a later output time a file
// that exists has new values. If the file is missing, the zone shares the values of zone 1.
namespace plot_data {

using model::Column;
using model::DataType;
using model::Domain;
using model::DomainSet;
using model::Location;
using model::Option;
using model::OutputVar;

// Output times at which a variable has a file.
enum class Timing {
    everyTime, // one for each output time
    firstPass, // read in the first pass, shared from then on
    property   // file of output time 1, read in the first pass; shared from then on
};

// Variables with a file and a column for each species or mixing fraction of the problem. The name
// of a column is the name of the species followed by that of the row's column.
enum class Family { oneFile, allSpecies, mobileSpecies, flagASpecies, flagBSpecies, fractions };

// Name in the variable list, and comment before the values.
struct ColumnText {
    std::string_view name;
    std::string_view label;
};

inline constexpr std::size_t maximumColumns = 6;

// A row of the variable table.
struct VariableRow {
    using Step = void (*)(Domain&, const VariableRow&, OutputVar&);

    std::string_view key{};       // identifies the row, unique in the table
    DomainSet domains = 0;        // domains that may have the variable
    Option option = Option::none; // of the control file, disables the variable
    std::string_view stem{}; // of the file name; ends with "_" if the name of the domain follows
    DataType type = DataType::real8;                  // of the values in file and data set
    Location location = Location::node;               // node or element
    std::string_view unit{};                          // dimension expression, empty: none
    std::array<ColumnText, maximumColumns> columns{}; // one for each component, the rest empty
    std::string_view arrayText{}; // name of the array in the out-of-memory banner
    Timing timing = Timing::everyTime;
    Family family = Family::oneFile;
    bool laterFallback = false; // an appending run may use the file of output time 1 at later times
    // At later output times the variable is shared after all others: its numbers are the last in
    // the list of shared variables. Its columns keep the position that the row has in the table.
    bool sharedLast = false;

    // Functions of a variable that needs its own. Null: `plainInit`, `plainRead` and `plainWrite`,
    // or the functions of the family. A row whose arrays are used for anything but its own columns
    // has a `read` of its own: the arrays of other rows can be empty, see deferred_reading.hpp.
    Step init = nullptr;  // first pass: declares the columns and reads the values
    Step read = nullptr;  // later output time: reads the values or shares them
    Step write = nullptr; // writes the values into the zone
};

// A result file that the run reads.
struct ResultFile {
    const std::string& name;
    DataType type;
    std::int32_t count; // values of each component
    std::size_t components;
    std::int32_t varNumber; // of the first component; 0 before it is in the data set
};

// What a dry run does instead of reading. Its arrays have no memory: those of the columns, and of
// the columns computed from them, are empty.
struct DryRun {
    void (*testFile)(const ResultFile& file);
};

// Return the number of values of the column, one for each node or element, and their bytes.
std::int32_t valueCount(const Domain& domain, const Column& column);
std::int64_t valueBytes(const Domain& domain, const Column& column);

// Returns whether common-node domains or a VTK file use the columns of the domain, so that they
// need arrays.
bool othersUseColumns(const Domain& domain);

// Returns the number of columns that have a name.
std::size_t columnCount(const VariableRow& row);

// Returns the file name "<prefix>o.<stem><domain>.<suffix>" with the suffix of the current output
// time. A stem that does not end with "_" is followed by the suffix alone.
std::string variableFile(const Domain& domain, std::string_view stem);

// Returns whether the file of the first pass exists. If it is missing, an appending run replaces
// `name` by the file of time index `fallback`. If that exists, echo file and screen show a warning.
bool checkFileInit(std::string& name, std::int32_t fallback = 1);

// The same for a file that is known to be missing.
bool useFallbackFile(std::string& name, std::int32_t fallback = 1);

// Returns the file of the row's values in the first pass, empty if it does not exist.
std::string firstFile(const Domain& domain, const VariableRow& row);

// The functions from here to `writeColumn` are the steps of the three functions after them, for
// variables that need other combinations.

// Return a column, and all columns, of the row's type and location, without number and values.
Column columnOf(const VariableRow& row, std::string_view label);
std::vector<Column> columnsOf(const VariableRow& row);

// Adds the column to the data set with name, type, unit and location, and sets its number.
void declareColumn(Domain& domain, Column& column, std::string_view name, std::string_view unit);

// Allocates one value for each node or element. `arrayText` names the array in the banner that ends
// the run if memory is exhausted.
void allocateColumn(const Domain& domain, Column& column, std::string_view arrayText);

// Reads a result file with a component for each column. A missing or damaged file, and one with too
// few values, end the run.
void readColumns(const Domain& domain, std::span<Column> columns, const std::string& name);

// The same, but returns false if the file does not exist.
bool readColumnsIfExist(const Domain& domain, std::span<Column> columns, const std::string& name);

// Reads the columns if the file exists, otherwise the next zone shares them. Sets `var.exists`.
void readOrShareColumns(Domain& domain, OutputVar& var, std::span<Column> columns,
                        const std::string& name);

// Read a file of one integer for each element, which replaces the element zones of the domain. A
// missing file ends the run, or the second function returns false.
void readElementZones(Domain& domain, const std::string& name);
bool readElementZonesIfExist(Domain& domain, const std::string& name);

// Shares the columns of the next zone with zone 1.
void shareColumns(Domain& domain, std::span<const Column> columns);

// Marks the element columns as cell-centred in the next zone, which every zone needs.
void markColumns(Domain& domain, std::span<const Column> columns);

// Writes the values of the included nodes or elements into the zone. The second function writes the
// values of an array other than the column's, of the column's type.
void writeColumn(Domain& domain, const Column& column);
void writeValues(Domain& domain, const Column& column, const void* values);

// Returns memory for the values of a column without an array. The next call returns the same
// memory. `arrayText` as for `allocateColumn`.
void* columnValues(const Domain& domain, const Column& column, std::string_view arrayText);

// First pass: declares the columns and reads the values if the file exists.
void plainInit(Domain& domain, const VariableRow& row, OutputVar& var);

// Later output time: reads the file or shares the columns.
void plainRead(Domain& domain, const VariableRow& row, OutputVar& var);

// Writes all columns.
void plainWrite(Domain& domain, const VariableRow& row, OutputVar& var);

// Later output time of a variable that never changes: shares the columns.
void constantRead(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace plot_data
