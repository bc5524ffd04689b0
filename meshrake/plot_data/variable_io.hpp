#pragma once

#include "meshrake/model/domain.hpp"

#include <array>
#include <span>
#include <string>
#include <string_view>

// The road of a result file to a column of a zone, written once. The rows of the table of variables
// tell what differs from one variable to the next.
//
// A variable is in a data set when its file exists in the first pass. After that, a file that
// exists at an output time gives new values, and a missing one means that the values of zone 1
// stand.
namespace plot_data {

using model::Column;
using model::DataType;
using model::Domain;
using model::DomainSet;
using model::Location;
using model::Option;
using model::OutputVar;

// When a variable has a file.
enum class Timing {
    everyTime, // one for each output time
    firstPass, // read in the first pass, shared from then on
    property   // that of output time 1, whatever the current time; shared from then on
};

// Variables with a file for each species or mixing fraction of the problem. The name of a member is
// the species' and that of the row's column behind it.
enum class Family { oneFile, allSpecies, mobileSpecies, flagASpecies, flagBSpecies, fractions };

// Name in the variable list, and comment in front of the values.
struct ColumnText {
    std::string_view name;
    std::string_view label;
};

inline constexpr std::size_t maximumColumns = 6;

struct VariableRow {
    using Step = void (*)(Domain&, const VariableRow&, OutputVar&);

    std::string_view key{};
    DomainSet domains = 0;
    Option option = Option::none;
    std::string_view
        stem{}; // of the file name; "sat_" is followed by the domain, "snowmelt." is not
    DataType type = DataType::real8;
    Location location = Location::node;
    std::string_view unit{};                          // dimension expression, empty: none
    std::array<ColumnText, maximumColumns> columns{}; // those of the components, empty ones behind
    std::string_view arrayText{};                     // tells the array when memory runs out
    Timing timing = Timing::everyTime;
    Family family = Family::oneFile; // of several files, each with a column
    bool laterFallback = false;      // a continued run may fall back to output time 1 later too
    // At later output times it is shared after all other variables: its numbers stand last in the
    // list of shared ones, while its columns keep the place that the row has in the table.
    bool sharedLast = false;

    // Steps of a variable that differs from the rest.
    Step init = nullptr;  // first pass: declare and read
    Step read = nullptr;  // later output time: read or share
    Step write = nullptr; // the values into the zone
};

std::size_t columnCount(const VariableRow& row);

// "<prefix>o.<stem><domain>.<suffix>" with the time index of the current output time.
std::string variableFile(const Domain& domain, std::string_view stem);

// Tests for the file in the first pass. A continued run that does not find it looks for that of
// time index `fallback`, whose name then replaces `name`, and says so on echo file and screen.
bool checkFileInit(std::string& name, std::int32_t fallback = 1);

// File that the row's values come from in the first pass, empty when there is none.
std::string firstFile(const Domain& domain, const VariableRow& row);

// Steps of `plainInit` for variables that are put together differently.

// A column of the row's type and location, with neither number nor values; and all that it names.
Column columnOf(const VariableRow& row, std::string_view label);
std::vector<Column> columnsOf(const VariableRow& row);

// Numbers a column and tells the data set its name, type, unit and location.
void declareColumn(Domain& domain, Column& column, std::string_view name, std::string_view unit);
void allocateColumn(const Domain& domain, Column& column, std::string_view arrayText);
void readColumns(const Domain& domain, std::span<Column> columns, const std::string& name);
void shareColumns(Domain& domain, std::span<const Column> columns);
void markColumns(Domain& domain, std::span<const Column> columns);
void writeColumn(Domain& domain, const Column& column);

// First pass: finds the file, declares the columns and reads the values.
void plainInit(Domain& domain, const VariableRow& row, OutputVar& var);

// Later output time: reads the file or shares the columns.
void plainRead(Domain& domain, const VariableRow& row, OutputVar& var);

// Writes all columns.
void plainWrite(Domain& domain, const VariableRow& row, OutputVar& var);

// Later output time of what never changes: shares the columns.
void constantRead(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace plot_data
