#pragma once

#include "tvncommon/search/box_tree.hpp"

#include <cstdint>
#include <string>
#include <string_view>

// The two files of a comparison. The plot file has observed and simulated values, the line of
// equality and the coefficient of determination. The scatter file also has positions and
// differences.
namespace observation_compare {

struct ComparisonTexts {
    std::string_view plotFile, scatterFile; // after "<prefix>o."
    std::string_view observed, simulated;   // names of the two variables
    std::string_view scatterTitle;          // first line of the scatter file
    std::string dataZone;                   // title of the zone of points
    std::string_view lastZone;              // keyword of the last zone, in either case
};

struct Comparison {
    ComparisonTexts texts;
    int plotUnit = 0, scatterUnit = 0;
    std::int32_t pointCount = 0; // points so far, from which the statistics below are computed
    double sumObserved = 0, sumSquaredError = 0;
    double lowest = 1e20, highest = -1e20; // of observed and simulated values
};

// Creates both files and writes everything before the points. A failed open ends the run.
Comparison openComparison(const ComparisonTexts& texts);

// Writes a point to both files. NaN does not change the lowest and highest value.
void addPoint(Comparison& comparison, const box_tree::Point& position, double observed,
              double simulated);

// Writes the statistics, closes the files and clears the observation set. The variance includes all
// observations that are not marked as outside the mesh, also those that were not compared.
void closeComparison(Comparison& comparison);

} // namespace observation_compare
