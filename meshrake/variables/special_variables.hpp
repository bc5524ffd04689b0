#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Steps of variables for which those of a plain row are not enough.
namespace variables {

using model::Domain;
using model::OutputVar;
using plot_data::VariableRow;

// Element zones. The column always exists: without a file it has the zones of the element list. A
// file replaces the element zones of the domain.
void zoneInit(Domain& domain, const VariableRow& row, OutputVar& var);
void zoneRead(Domain& domain, const VariableRow& row, OutputVar& var);
void zoneWrite(Domain& domain, const VariableRow& row, OutputVar& var);

// Hydraulic conductivities: six columns if the message in the file's header is 3 (a full tensor),
// otherwise three. A message that is not an integer ends the run.
void elemKInit(Domain& domain, const VariableRow& row, OutputVar& var);

// Reads Peclet numbers at a later output time. No pass calls these functions: the columns are
// shared with zone 1.
void pecletRead(Domain& domain, const VariableRow& row, OutputVar& var);
void diffPecletRead(Domain& domain, const VariableRow& row, OutputVar& var);

// 3D subsurface evaporation. Its file name has two spellings, ETPMEvap3D_ at the first output time
// and ETPmEvap3D_ later; the other spelling is tried if the expected one does not exist.
void et3dInit(Domain& domain, const VariableRow& row, OutputVar& var);
void et3dRead(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace variables
