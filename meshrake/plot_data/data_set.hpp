#pragma once

#include "meshrake/model/domain.hpp"

#include <string_view>

// The Tecplot data set of a domain: a file of zones that all carry the same variables in the same
// order. Calling order: tecplotInit; for each variable tecplotVarAdd, tecplotDataType,
// tecplotVarUnitsAdd and, if it is cell-centred, tecplotVarLocCCAdd; tecplotFileOpen;
// tecplotVarUnitsWrite; then the zones; tecplotFileClose.
namespace plot_data {

using model::DataType;
using model::Domain;

// Word of the type in a plot file.
std::string_view tecDt2String(DataType type);

// Clears what a data set of the domain has collected.
void tecplotInit(Domain& domain);

// Appends a variable, shows its number and name on screen and echo file, and returns the number.
std::int32_t tecplotVarAdd(std::string_view name, Domain& domain);

// Type of the variable declared last.
void tecplotDataType(DataType type, Domain& domain);

// The variable's values in the next zone are those of zone 1.
void tecplotVarShareAdd(std::int32_t varNumber);

// The variable is cell-centred in the next zone. To be said again for every zone.
void tecplotVarLocCCAdd(std::int32_t varNumber);

// Creates <name>.dat with title, variables and metadata, or opens <name>.szplt in the binary form.
// A failed open ends the run.
void tecplotFileOpen(std::string_view name, std::string_view title, Domain& domain);

// Hands finished zones to the disk where the form of the file holds them back; text does not.
void tecplotFileFlush(Domain& domain);

// Ends the file; nothing happens if it was never opened. A binary file that a later run may
// continue is flushed and stays unfinished.
void tecplotFileClose(Domain& domain);

// The eight auxiliary values of a data set: program, time, problem and base units.
void tecplotMetadata(Domain& domain);

// The same as text on any open unit, whatever the form of the plot files.
void tecplotMetadataAscii(int unit);

} // namespace plot_data
