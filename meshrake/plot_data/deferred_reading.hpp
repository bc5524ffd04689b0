#pragma once

#include "meshrake/plot_data/variable_io.hpp"

// Reads large arrays of a binary data set while their zone is written, one column after the other.
// The files are opened before the zone, whose header lists the variables with values of its own.
//
// A damaged file ends the run within the zone. So the text form, whose readers would see a part of
// a zone, reads all arrays before it. The first zone replaces the data set of an earlier run, so
// the first pass defers no read of a file whose records are incomplete.
namespace plot_data {

// Returns whether the reads of a variable with these columns and this first file can be deferred:
// no other column, domain or plot uses its arrays, and the file has a record for each column.
bool canDeferReads(const Domain& domain, const VariableRow& row, const OutputVar& var,
                   const std::string& name);

// Opens a file with a component for each column, for `writeDeferred`. At the first file with a
// record for each node, which cannot be read by columns, the columns get arrays instead; all later
// files are then read into them. A failure ends the run; for a missing file the effect can be
// another: see `TVNBinaryFile::Missing`.
bool openDeferred(Domain& domain, const VariableRow& row, OutputVar& var, const std::string& name,
                  TVNBinaryFile::Missing missing);

// Reads and writes all columns of an open file, and closes it.
void writeDeferred(Domain& domain, const VariableRow& row, OutputVar& var);

} // namespace plot_data
