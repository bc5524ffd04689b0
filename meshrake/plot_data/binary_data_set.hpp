#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

// The steps of a data set that goes through the writer library. The functions of the same names in
// `plot_data` call them when the run is in binary mode. A call that the library refuses closes the
// data set, which stays unfinished, and ends the run.
namespace plot_data::binary {

using model::Domain;

// Opens <name>.szplt. A run that continues the output goes on with it, or begins it where it is
// missing; any other replaces it.
void fileOpen(std::string_view name, std::string_view title, Domain& domain);
void addMetadata(std::string_view key, std::string_view value, Domain& domain);
void varUnitsWrite(Domain& domain);

void writeZoneFE(std::string_view title, std::string_view solutionTime, int connectivityShareZone,
                 Domain& domain);

// The next values of a variable; one call, if an empty one, for a zone without any. Number 0 has no
// column: its values are dropped.
void writeValues(std::int32_t varNumber, std::int64_t count, const float* values, Domain& domain);
void writeValues(std::int32_t varNumber, std::int64_t count, const double* values, Domain& domain);
void writeValues(std::int32_t varNumber, std::int64_t count, const std::int32_t* values,
                 Domain& domain);

// Ends the run when the variable got another number of values than the zone has.
void checkCount(std::int32_t varNumber, std::int64_t written, Domain& domain);

// The next node numbers of the zone; one call, if an empty one, for a zone without elements.
void writeNodes(std::int64_t count, const std::int32_t* nodes, Domain& domain);

void fileFlush(Domain& domain);

// Finishes the data set, or leaves it to the run that continues it.
void fileClose(Domain& domain);

} // namespace plot_data::binary
