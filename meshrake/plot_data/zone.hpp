#pragma once

#include "meshrake/model/domain.hpp"

#include <string_view>

namespace plot_data {

// Opens the next zone with the output counts of the domain. `solutionTime` may be blank; a
// `connectivityShareZone` above 0 takes the element lists of that zone. The lists of shared and
// cell-centred variables are used up.
void tecplotWriteZoneFE(std::string_view title, std::string_view solutionTime,
                        int connectivityShareZone, model::Domain& domain);

} // namespace plot_data
