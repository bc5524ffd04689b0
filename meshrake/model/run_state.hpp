#pragma once

#include "meshrake/model/domain.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace plot_data {
struct WriterFunctions;
}

namespace model {

// Field measurements that are compared with the results of the last output time: those of one file
// at a time.
struct ObservationSet {
    std::int32_t obsCount = 0;
    std::vector<double> obsX, obsY, obsZ; // obsCount each, length unit; obsZ 0 where told in plan
    std::vector<double> obsValue;         // obsCount: head, elevation or depth, length unit
    std::vector<double> obsShape;         // 8 for each point: shape values in its element
    std::vector<std::int32_t> obsElement; // obsCount: element of the point, 0 unknown, -1 outside
};

// Everything the run knows beside its domains. A fresh one is a program start.
struct RunState {
    // Problem and place in the run
    std::string problemPrefix;         // every file name begins with it
    int echoUnit = 0;                  // unit of the echo file, 0 while it is not open
    int controlUnit = 0;               // unit of the control text while it is processed
    std::int32_t timeIndex = 1;        // output time being processed
    std::int32_t firstTimeIndex = 1;   // output time of the first pass
    std::int32_t startTimeIndex = 1;   // output time at which the loop starts
    std::int32_t appendFirstIndex = 1; // first output time in the time window
    bool appendIndexWarned = false;    // the index could not be written, and a warning was given
    std::string currentTimeText;       // time stamp of the output time, at most 60 characters
    std::string lastTimeText;          // time stamp of the last completed output time
    std::string timeSuffix;            // timeIndex with leading zeros, suffixDigits characters
    bool timeFileKnown = false;        // timeFile is the file found last
    std::string timeFile;              // result file whose time stamp was read last
    bool pmPassRequired = false;       // pm is read for others although it is not written
    bool makePlotControl = false;      // --make_plot_control was given
    bool controlFileExists = false;    // <prefix>.plot.control exists

    // Wishes of the control file
    bool tecplotMode = true;
    bool tecplotBinary = false;
    std::int32_t tecplotFlushInterval = 1; // output times between two flushes
    bool tecplotAppend = false;
    bool truncateTime = false;
    double timeWindowMin = 0, timeWindowMax = 0; // in the unit of the time stamps
    std::int32_t suffixDigits = 4;               // digits of the time index in file names
    std::int32_t suffixLength = 5;               // those and the leading point
    bool timeConversion = false;                 // t becomes t * timeUnitFactor + timeUnitOffset
    double timeUnitOffset = 0, timeUnitFactor = 0;
    bool plotIsopach = false;
    bool plotDepthBelowSurface = false;
    bool interpolateDepthToTable = false;
    bool compareHeads = false;
    bool compareWaterTable = false;
    bool compareDepthToTable = false;
    bool compareSurfaceDepth = false;
    std::array<double, 6> compareWindow{}; // x, y, z pairs
    bool paraviewMode = false;             // no instruction sets these two
    bool bcLocationOutput = false;

    // Problem description
    std::int32_t numTitleLines = 0;
    std::vector<std::string> titleLines; // 60 characters each, at least one
    bool speciesPresent = false;
    std::int32_t numMobileSpecies = 0, numImmobileSpecies = 0, numSpecies = 0;
    std::vector<std::string> speciesNames;  // numSpecies, mobile first; trailing blanks dropped
    std::vector<std::uint8_t> speciesFlagA; // numSpecies: the species is heat, or sorbs
    std::vector<std::uint8_t> speciesFlagB; // numSpecies: the species is made of particles
    bool anySpeciesFlagB = false;
    bool hmcPresent = false;
    std::int32_t numHmcFractions = 0;
    std::vector<std::string> hmcFractionNames; // "f_" and the name, at most 80 characters

    // Mesh as a whole
    std::int32_t totalNodes = 0;                 // global nodes so far
    std::int32_t gridCountA = 0, gridCountB = 0; // kept, used by nothing
    std::int32_t sheetCount = 0;                 // node sheets of pm; layers are one fewer
    std::int32_t meshNodesPerElement = 0;        // of the last element of a common-node truncation
    bool wallsPresent = false;                   // olf has cutoff walls: several nodes at a place
    std::int32_t wallCountA = 0;                 // kept, used by nothing
    std::int32_t wallLayers = 0;
    std::vector<std::int32_t> wallNodeFlag;     // olf nodes: not 0 at a node with wall data
    std::vector<std::int32_t> wallNodeTable;    // olf nodes by wallLayers: replacing global node
    std::vector<std::int32_t> wallNodeValue;    // olf nodes
    std::vector<std::int32_t> wallElementLayer; // olf elements: wall layer of the element

    // Text or binary form of the plot files, selected after the control file is read; null: text.
    const plot_data::WriterFunctions* plotWriter = nullptr;

    ObservationSet observations; // set up and given back by each comparison

    // Text of the plot files until it is written. One domain's zone is complete before the next
    // domain's begins, so one buffer is enough.
    std::vector<char> writeBuffer;
};

extern RunState run;

// True for a pm that lends its arrays to domains without nodes of their own and is not written.
bool isOnlyLent(const Domain& domain);

// Writes one line on the screen, on the echo file, and on both. A failure ends the run.
void writeScreen(std::string_view line);
void writeEcho(std::string_view line);
void write_string(std::string_view line);

// A file name without its trailing blanks.
std::string fileName(std::string_view text);

// "<prefix>o.<rest>" as a file name.
std::string problemFile(std::string_view rest);

} // namespace model
