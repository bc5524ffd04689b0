#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace check {

// Size and contents of the plot file of a domain.
struct Measure {
    std::int64_t bytes = 0;
    std::int64_t zones = 0;
    bool zoneLineIsCut = false;     // text form: a zone line is longer than the format allows
    std::vector<std::string> names; // of the variables of the data set

    // The last zone. The lists have an entry for each variable of the data set.
    std::vector<bool> ofElements;
    std::vector<bool> shared;  // the values are those of zone 1
    std::vector<bool> written; // the zone has values
    // Number of values in the first zone, below 0 before they are counted. Later zones have as
    // many.
    std::vector<std::int64_t> counts;
    bool hasUndeclared = false; // text form: it has values of a variable not in the data set
};

// Selects a plot writer that writes nothing and measures the plot files in the form that the
// control file requests. Call it after the control file is read.
void selectMeasuringWriter();

// Returns the measure of the plot file of a domain, up to its last zone.
const Measure& measureOf(const model::Domain& domain);

// Sets `bytes` to the final size, including the headers of a binary data set. Returns false if the
// size is only a close estimate.
bool finishMeasure(const model::Domain& domain, std::int64_t& bytes);

} // namespace check
