#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <string>
#include <string_view>

// Opens data sets with the writer library. It may resume a data set that an earlier run left
// unfinished. A failure ends the run; the banner has the name of the file and the reason.
namespace plot_data::binary {

// Statuses of this project's writer library that are not those of the I/O layer, as in tecio.h.
enum LibraryStatus : std::int32_t {
    invalidCall = 1,
    damagedDataSet = 2,
    damagedSidecar = 3,
    otherVariables = 4,
    otherMesh = 5,
    notDurable = 6
};

// Returns the status as this project's library defines it: 1 for any failure of another library.
std::int32_t ownStatus(std::int32_t status);

// Returns the file at which the library's last call failed: the data set `path` or its sidecar.
std::string failedFile(const std::string& path);

// Ends the run if a variable of the domain has a comma in its name, by which the library separates
// the names.
void checkNames(const model::Domain& domain);

// Opens <name>.szplt. A run that continues the output resumes the data set, or creates it if it is
// missing; any other run replaces it.
void openDataSet(std::string_view name, std::string_view title, model::Domain& domain);

// Publishes the zones of an earlier run that are complete in the file but not in its header, so
// that readers find them. The earlier run was interrupted after it recorded its last output time.
// Without a further output time this run opens no data set, so nothing else would publish them. A
// damaged data set ends the run. One without a sidecar is finished and is not changed.
void publishZonesOfEarlierRun(const model::Domain& domain);

} // namespace plot_data::binary
