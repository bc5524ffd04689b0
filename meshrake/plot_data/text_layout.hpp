#pragma once

#include "meshrake/model/domain.hpp"

#include <cstdint>
#include <string>
#include <string_view>

// The lines of a text data set, without line feeds, and the sizes of its arrays. docs/formats.md,
// "Text data set", describes the format.
namespace plot_data::text_layout {

using model::DataType;
using model::Domain;

// Return lines of the header.
std::string titleLine(std::string_view title);
std::string variablesLine(const Domain& domain);
std::string metadataLine(std::string_view key, std::string_view value);

// Return the zone line of zone `dataSet.zoneNumber` with the lists of `dataSet.nextZone`, and the
// line of the types of the variables, which is empty without variables. The zone has its own
// element lists if `connectivityShareZone` is less than 1.
std::string zoneLine(std::string_view title, std::string_view solutionTime,
                     int connectivityShareZone, const Domain& domain);
std::string typesLine(const Domain& domain);

// True if the zone line is longer than the format allows. `zoneLine` then omits its end.
bool zoneLineIsCut(std::string_view title, std::string_view solutionTime, int connectivityShareZone,
                   const Domain& domain);

std::string arrayLine(std::string_view label); // comment line before the values
inline constexpr std::string_view nodeListsLine = "# element node lists";

// Return the number of bytes of the rows of an array of `count` values, and of a node list of
// `length` nodes.
std::int64_t arrayBytes(DataType type, std::int64_t count);
std::int64_t nodeListBytes(int length);

} // namespace plot_data::text_layout
