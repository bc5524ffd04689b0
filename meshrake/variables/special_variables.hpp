#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Variables that do not travel the plain road.
namespace variables {

using model::Domain;
using model::OutputVar;
using plot_data::VariableRow;

// Element zones: the column is always there; without a file it shows those of the element list.
void zoneInit(Domain& domain, const VariableRow& row, OutputVar& var);
void zoneRead(Domain& domain, const VariableRow& row, OutputVar& var);
void zoneWrite(Domain& domain, const VariableRow& row, OutputVar& var);

// Heads and what follows from them: depth of water and its logarithm on surface and channels,
// pressure head elsewhere.
void headInit(Domain& domain, const VariableRow& row, OutputVar& var);
void headRead(Domain& domain, const VariableRow& row, OutputVar& var);

// Hydraulic conductivities: the message of the file's header says whether they are a full tensor. A
// message that is no number ends the run.
void elemKInit(Domain& domain, const VariableRow& row, OutputVar& var);

// Later output times of Peclet numbers. No pass calls them: the numbers of zone 1 stand for all.
void pecletRead(Domain& domain, const VariableRow& row, OutputVar& var);
void diffPecletRead(Domain& domain, const VariableRow& row, OutputVar& var);

// Evaporation from the subsurface in 3D, whose file is spelt in two ways.
void et3dInit(Domain& domain, const VariableRow& row, OutputVar& var);
void et3dRead(Domain& domain, const VariableRow& row, OutputVar& var);

// The five files of the snow package, which share one flag.
void rainSnowmeltInit(Domain& domain, const VariableRow& row, OutputVar& var);
void rainSnowmeltRead(Domain& domain, const VariableRow& row, OutputVar& var);
void rainSnowmeltWrite(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace variables
