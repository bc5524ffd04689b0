#pragma once

#include "meshrake/model/domain.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace plot_data {
struct WriterFunctions;
struct DryRun;
} // namespace plot_data
namespace plot_control {
struct ControlSource;
}

namespace model {

// Field measurements of one file, which are compared with the results of the last output time.
struct ObservationSet {
    std::int32_t obsCount = 0;            // observation points
    std::vector<double> obsX, obsY, obsZ; // obsCount each, length unit; obsZ is 0 in plan
    std::vector<double> obsValue;         // obsCount: head, elevation or depth, length unit
    std::vector<double> obsShape;         // 8 for each point: shape function values in its element
    std::vector<std::int32_t> obsElement; // obsCount: element from 1; 0: not known; -1: outside
};

// The beginning of the write buffer, which a file does not have yet.
struct KeptText {
    int unit = 0; // of the file
    std::size_t bytes = 0;
};

// The state of a run, without its domains. A run starts with a default record.
struct RunState {
    // Problem and progress
    std::string problemPrefix;         // begins the name of every file of the problem
    int echoUnit = 0;                  // file unit of the echo file, 0 before it is open
    int controlUnit = 0;               // file unit of the control text while it is processed
    std::int32_t timeIndex = 1;        // output time being processed, from 1
    std::int32_t firstTimeIndex = 1;   // output time of the first pass
    std::int32_t startTimeIndex = 1;   // output time at which the loop starts
    std::int32_t appendFirstIndex = 1; // first output time in the time window
    bool appendIndexWarned = false;    // the run has warned that it cannot write its index
    std::string currentTimeText;       // time stamp of the output time, at most 60 characters
    std::string lastTimeText;          // time stamp of the last completed output time
    std::string timeSuffix;            // timeIndex with leading zeros, suffixDigits characters
    bool timeFileKnown = false;        // the last search for a file with a time stamp succeeded
    std::string timeFile;              // result file whose time stamp was read last
    bool pmPassRequired = false;       // pm is not written, but common-node domains need its values
    bool pmColumnsUsed = false;        // common-node domains take values from the columns of pm
    bool makePlotControl = false;      // the command line has --make_plot_control
    bool controlFileExists = false;    // <prefix>.plot.control exists

    // Requested options
    bool tecplotMode = true;               // "tecplot mode", which is the default; not used
    bool tecplotBinary = false;            // plot files are binary, otherwise text
    std::int32_t tecplotFlushInterval = 1; // output times between two flushes
    bool tecplotAppend = false;            // this run appends to the binary files of an earlier one
    bool truncateTime = false;             // only output times in the time window are processed
    double timeWindowMin = 0;              // first time of the window, unit of the time stamps
    double timeWindowMax = 0;              // last time of the window, unit of the time stamps
    std::int32_t suffixDigits = 4;         // digits of the time index in file names
    std::int32_t suffixLength = 5;         // suffixDigits + 1, for the point
    bool timeConversion = false;           // time t becomes t * timeUnitFactor + timeUnitOffset
    double timeUnitOffset = 0;             // in the converted unit
    double timeUnitFactor = 0;             // converted units in one unit of the time stamps
    bool plotIsopach = false;              // plot the thickness of the zones of pm
    bool plotDepthBelowSurface = false;    // plot the depth of pm's nodes below the surface
    bool interpolateDepthToTable = false;  // interpolate the water table between two nodes
    bool compareHeads = false;             // compare heads of pm with observations
    bool compareWaterTable = false;        // compare elevations of the water table
    bool compareDepthToTable = false;      // compare depths to the water table
    bool compareSurfaceDepth = false;      // compare water depths of olf
    std::array<double, 6> compareWindow{}; // compare only inside: x, y, z pairs, length unit
    bool paraviewMode = false;             // write legacy VTK files; no instruction sets it
    bool bcLocationOutput = false;         // write boundary conditions as VTK; as paraviewMode

    // Problem description
    std::int32_t numTitleLines = 0;         // lines of the title
    std::vector<std::string> titleLines;    // numTitleLines, at least 1, of 60 characters each
    bool speciesPresent = false;            // <prefix>o.species exists
    std::int32_t numMobileSpecies = 0;      // dissolved species
    std::int32_t numImmobileSpecies = 0;    // species on the solid phase
    std::int32_t numSpecies = 0;            // mobile and immobile species
    std::vector<std::string> speciesNames;  // numSpecies, mobile first; no trailing blanks
    std::vector<std::uint8_t> speciesFlagA; // numSpecies: 1 for heat; 0 for immobile species
    std::vector<std::uint8_t> speciesFlagB; // numSpecies: 1 for particles; 0 for immobile species
    bool anySpeciesFlagB = false;           // an entry of speciesFlagB is set
    bool hmcPresent = false;                // <prefix>o.hmc exists
    std::int32_t numHmcFractions = 0;       // mixing fractions
    std::vector<std::string> hmcFractionNames; // numHmcFractions: "f_" and name

    // Mesh of all domains
    std::int32_t totalNodes = 0;                // global nodes of the domains read so far
    std::int32_t gridCountA = 0;                // first integer after pm's coordinates, not used
    std::int32_t gridCountB = 0;                // second integer after pm's coordinates, not used
    std::int32_t sheetCount = 0;                // sheets of nodes in pm; it has one layer fewer
    std::int32_t meshNodesPerElement = 0;       // used slots of the last common-node element
    bool wallsPresent = false;                  // cutoff walls: olf nodes with the same position
    std::int32_t wallCountA = 0;                // first integer of the wall data, not used
    std::int32_t wallLayers = 0;                // wall layers of wallNodeTable
    std::vector<std::int32_t> wallNodeFlag;     // olf nodes: not 0 at a node with wall data
    std::vector<std::int32_t> wallNodeTable;    // wallLayers by olf nodes: replacing global node
    std::vector<std::int32_t> wallNodeValue;    // olf nodes: read, but not used
    std::vector<std::int32_t> wallElementLayer; // olf elements: wall layer of the element

    ObservationSet observations; // of the comparison in progress

    // Dry run: reports what a run would do
    // If not null, result files are tested instead of read, and nothing is written on the screen or
    // to the echo file.
    const plot_data::DryRun* dryRun = nullptr;
    // If not null, a control text in memory that replaces the text on `controlUnit`.
    const plot_control::ControlSource* controlSource = nullptr;

    // Plot files
    // Text or binary form, selected after the control file is read. Text if null.
    const plot_data::WriterFunctions* plotWriter = nullptr;
    // Collects text until it is written. Each zone is complete before that of the next domain
    // begins, so one buffer is enough.
    std::vector<char> writeBuffer;
    KeptText keptText; // text in it between two arrays of a zone
    // Values of the column that is being written, if it has no array of its own.
    std::vector<std::byte> columnValues;
};

extern RunState run;

} // namespace model
