#pragma once

#include "meshrake/model/domain.hpp"

#include <string_view>

// The Tecplot data set of a domain: a file of zones that all have the same variables in the same
// order. Order of calls: tecplotInit; for each variable tecplotVarAdd, tecplotDataType,
// tecplotVarUnitsAdd and, if it is cell-centred, tecplotVarLocCCAdd; tecplotFileOpen;
// tecplotVarUnitsWrite; then the zones; tecplotFileClose.
namespace plot_data {

using model::DataType;
using model::Domain;

// Selects the form of all plot files of the run: binary if the control file requests it
// (`run.tecplotBinary`), otherwise text. Called once, after the control file is read.
void selectWriter();

// Returns the extension of the plot files with its point: ".dat" or ".szplt".
std::string_view plotFileExtension();

// Returns the name of the type in a plot file: "SINGLE", "DOUBLE" or "LONGINT".
std::string_view tecDt2String(DataType type);

// Clears the data set record of the domain.
void tecplotInit(Domain& domain);

// Appends a variable, shows its number and name on screen and echo file, and returns the number.
std::int32_t tecplotVarAdd(std::string_view name, Domain& domain);

// Sets the type of the variable that was added last.
void tecplotDataType(DataType type, Domain& domain);

// Shares the variable's values in the next zone with zone 1.
void tecplotVarShareAdd(std::int32_t varNumber, Domain& domain);

// Marks the variable as cell-centred in the next zone. Every zone needs this call, also for a
// variable that is shared.
void tecplotVarLocCCAdd(std::int32_t varNumber, Domain& domain);

// Opens the plot file <name> + plotFileExtension() and writes title, variables and metadata. A
// binary run that appends resumes an existing file, any other run replaces it. A failed open ends
// the run.
void tecplotFileOpen(std::string_view name, std::string_view title, Domain& domain);

// Writes the headers of all complete zones of a binary file, so that readers find them. A text file
// needs no flush.
void tecplotFileFlush(Domain& domain);

// Finishes and closes the file. Does nothing if it was never opened, except that a run that appends
// then publishes the zones of an earlier run in a binary file. A run that appends flushes a binary
// file and leaves it unfinished, so that a later run can resume it.
void tecplotFileClose(Domain& domain);

// Writes the eight auxiliary values of a data set: program, time, problem and base units.
void tecplotMetadata(Domain& domain);

// Writes the same values as text to any open unit, for text files that are not data sets.
void tecplotMetadataAscii(int unit);

} // namespace plot_data
