#pragma once

#include "tvncommon/search/box_tree.hpp"

#include <cstdint>
#include <string>
#include <string_view>

// The two files of a comparison: observed against simulated values, with the line of equality and
// the coefficient of determination, and the same with the positions.
namespace observation_compare {

struct ComparisonTexts {
    std::string_view plotFile, scatterFile; // behind "<prefix>o."
    std::string_view observed, simulated;   // names of the two variables
    std::string_view scatterTitle;          // first line of the scatter file
    std::string dataZone;                   // title of the zone of points
    std::string_view lastZone;              // word that opens the last zone
};

struct Comparison {
    ComparisonTexts texts;
    int plotUnit = 0, scatterUnit = 0;
    std::int32_t pointCount = 0; // points that took part so far, and what has come of them
    double sumObserved = 0, sumSquaredError = 0;
    double lowest = 1e20, highest = -1e20;
};

// Creates both files with all that stands in front of the points.
Comparison openComparison(const ComparisonTexts& texts);

// Writes a point that takes part into both files. A value that is no number leaves lowest and
// highest as they are.
void addPoint(Comparison& comparison, const box_tree::Point& position, double observed,
              double simulated);

// Writes the statistics and closes the files. The spread about the mean is that of all observations
// but those that are marked as outside the mesh, whether they took part or not. Gives the
// observation set back.
void closeComparison(Comparison& comparison);

} // namespace observation_compare
