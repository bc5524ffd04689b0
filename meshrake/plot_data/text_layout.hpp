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

std::string titleLine(std::string_view title);
std::string variablesLine(const Domain& domain);
std::string metadataLine(std::string_view key, std::string_view value);

// The zone line for the variables that `dataSet.nextZone` marks, as zone `dataSet.zoneNumber`, and
// the line of the types of the variables, which is empty without variables. `connectivityShareZone`
// below 1: the zone has its own element lists.
std::string zoneLine(std::string_view title, std::string_view solutionTime,
                     int connectivityShareZone, const Domain& domain);
std::string typesLine(const Domain& domain);

// True if the zone line is longer than the format allows. `zoneLine` then lacks its end.
bool zoneLineIsCut(std::string_view title, std::string_view solutionTime, int connectivityShareZone,
                   const Domain& domain);

std::string arrayLine(std::string_view label); // before the values
inline constexpr std::string_view nodeListsLine = "# element node lists";

// Bytes of the rows of an array, and of a node list of `length` nodes.
std::int64_t arrayBytes(DataType type, std::int64_t count);
std::int64_t nodeListBytes(int length);

} // namespace plot_data::text_layout
