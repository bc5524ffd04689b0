#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace check {

// The plot file that a domain would have.
struct Measure {
    std::int64_t bytes = 0;
    std::int64_t zones = 0;
    bool zoneLineIsCut = false;     // text: a zone line is longer than the format allows
    std::vector<std::string> names; // of the variables of the data set

    // The last zone, with an entry for each variable of the data set.
    std::vector<bool> ofElements;
    std::vector<bool> shared;   // its values are those of zone 1
    std::vector<bool> written;  // it has values
    bool hasUndeclared = false; // text: it has values of a variable that the data set does not have
};

// Makes the plot writer of the run one that writes nothing and measures the plot files, in the form
// that the control file requests. Call it after the control file is read.
void selectMeasuringWriter();

// The plot file of a domain, up to the zones that were measured.
const Measure& measureOf(const model::Domain& domain);

// Sets its final size, which includes the headers of a binary data set; false if the size is only a
// close estimate.
bool finishMeasure(const model::Domain& domain, std::int64_t& bytes);

} // namespace check
