#pragma once

#include "meshrake/model/domain_options.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace model {

// Type of a column's values. The numbers are the type codes of the writer library.
enum class DataType { single = 1, real8 = 2, longInt = 3 };

enum class Location { node, element };

// One variable's values in a data set. Only the array of the column's type is in use, with one
// value per node or per element. It is empty if the values are read or computed for each write and
// nothing else uses them.
struct Column {
    std::int32_t varNumber = 0; // number in the data set, from 1; 0 if it is not in one
    DataType type = DataType::real8;
    Location location = Location::node;
    std::string label; // comment before the values
    std::vector<float> real4;
    std::vector<double> real8;
    std::vector<std::int32_t> int4;
};

// State of one output variable in one domain. A vector or a family of species has several columns
// and one pair of flags.
struct OutputVar {
    std::string_view key;     // key of its row in the variable table
    bool firstExists = false; // the first pass found it: later passes read or share it
    bool exists = false;      // it has values of the current output time, which the zone gets
    std::vector<Column> columns;
    bool readsDeferred = false;         // its files are read while the zone is written
    TVNBinaryFile::OpenFile openFile{}; // to be read for the current zone; unit 0: none
};

// Numbers of the variables with a property that holds for the next zone of a data set only.
struct NextZone {
    std::vector<std::int32_t> sharedVars;       // the zone shares their values with zone 1
    std::vector<std::int32_t> cellCenteredVars; // one value per element
};

// The plot file of a domain.
struct DataSet {
    std::string fileName;        // as given to tecplotFileOpen, without extension
    std::int32_t zoneNumber = 0; // last zone that was created, 0 before the first
    std::int32_t numVars = 0;    // variables added so far
    NextZone nextZone;           // emptied when the zone is created
    std::string varNameList;     // names separated by commas, in the text form in quotes

    // Text form
    std::string varTypeList;  // type words, separated by commas
    std::string unitComments; // comment lines with the units of the variables
    std::string unitAuxData;  // auxiliary data lines with the units of the variables

    // Binary form, with one entry for each variable in the lists
    void* handle = nullptr;                // open file of the writer library
    std::vector<std::int32_t> varTypes;    // type codes
    std::vector<std::string> varUnits;     // at most 50 characters each, empty: none
    std::vector<std::int32_t> varLocation; // in the last zone: 1 at nodes, 0 in elements
};

// One simulation domain: its mesh, options, output variables and plot file. Node and element
// numbers in the arrays count from 1.
struct Domain {
    std::string name;                    // tag; empty while the domain does not exist
    DomainSet tag = 0;                   // the same as a bit
    bool exists = false;                 // its coordinates file exists
    const Domain* pmReference = nullptr; // pm, with its columns at the current output time
    int tecplotUnit = -1;                // file unit of the plot file, below 1 when closed

    std::int32_t couplingScheme = 0; // 1: own nodes (multi-node), else nodes of pm (common-node)
    DomainOption writeDomain;        // "write <tag> domain file"; enabled: the domain is written
    std::array<DomainOption, optionCount> options; // by Option

    std::int32_t nodeCount = 0;
    std::vector<double> x, y, z;          // nodeCount each, length unit; pm and multi-node only
    std::vector<std::int32_t> linkToPm;   // nodeCount: pm node at each node's position; not for pm
    std::vector<std::int32_t> linkFromPm; // pm nodeCount: global node number, below 1 if none
    std::int32_t nodeOffset = 0;          // global node number minus the domain's own

    std::int32_t elementCount = 0;
    std::int32_t nodesPerElement = 0;
    std::vector<std::int32_t> elementNodes; // nodesPerElement for each element: pm node numbers
    std::vector<std::int32_t> elementZone;  // elementCount
    std::string zoneType;                   // word of the plot file, blank for an unknown shape
    std::vector<std::int32_t> fractureLink; // frac: 2 * elementCount, read, but not used
    std::vector<double> fractureAperture;   // frac: elementCount, length unit

    bool truncateEnabled = false;        // the control file has "truncate <tag> domain"
    bool truncateByLayerEnabled = false; // the control file has "truncate <tag> domain by layer"
    std::array<double, 6> truncateBounds{-1e20, 1e20, -1e20, 1e20, -1e20, 1e20}; // x, y, z pairs
    std::array<std::int32_t, 2> truncateLayers{0, 1000};                         // first and last

    // Results of the truncation, fixed for the run.
    bool outputIsPacked = false;                  // values of included nodes and elements alone
    std::vector<std::uint8_t> nodeIncluded;       // nodeCount; of pm for a common-node domain
    std::vector<std::uint8_t> domainNodeIncluded; // nodeCount; common-node only
    std::vector<std::uint8_t> elementIncluded;    // elementCount
    std::vector<std::int32_t> nodeRenumber; // pm nodeCount: node number in the output, 0: none
    std::int32_t nnTruncated = 0;           // nodes of the output mesh
    std::int32_t neTruncated = 0;           // elements of the output mesh

    DataSet dataSet;
    std::vector<OutputVar> outputVars; // one for each row of the variable table
};

DomainOption& optionOf(Domain& domain, Option option);
const DomainOption& optionOf(const Domain& domain, Option option);
bool enabled(const Domain& domain, Option option); // true for Option::none

// True for pm and for a domain that uses the multi-node scheme.
bool hasOwnNodes(const Domain& domain);

// True if pm is read only because common-node domains take their values from it.
bool isReadButNotWritten(const Domain& domain);

// The nodesPerElement node slots of an element, counted from 0. A slot has a pm node number, or a
// number below 1 if it is unused.
inline const std::int32_t* slotsOf(const Domain& domain, std::size_t element) {
    return domain.elementNodes.data() + element * static_cast<std::size_t>(domain.nodesPerElement);
}

// The domain's variable with this key, null if it has none.
const OutputVar* findOutputVar(const Domain& domain, std::string_view key);

// The domain's variable with this key. A key that the variable table does not have ends the run.
OutputVar& outputVar(Domain& domain, std::string_view key);

// Creates the domain `tag` if its coordinates file exists: sets the option labels and reads the
// mesh. `addition` always exists and has no mesh. `pm` is the pm record, also for pm itself. A
// damaged file ends the run; the banner names it.
void domainCreate(Domain& domain, std::string_view tag, const Domain& pm);

} // namespace model
