#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Functions of this project's writer library that are not in tecio.h. Another library with the
// functions of tecio.h does not have them, so callers test MESHRAKE_OWN_TECIO first.
namespace tecio {

// Sets whether data sets that are opened after the call are durable: complete zones survive a power
// cut. A zone of a durable data set is on the disk when the call that completes it returns. Its
// header is on the disk when a flush returns. An open compares the data of the last zone with their
// checksum. It returns status 6 for an unfinished data set that was not durable.
void setDurable(bool durable);

// Returns whether the last call of tecio.h that failed with a status of the I/O layer failed at the
// sidecar, not at the data set itself.
bool sidecarFailed();

// Returns the number of zones with this time in a resumed data set. The result is 0 once the time
// of its first new zone is set.
std::int32_t resumedZonesAt(const void* fileHandle, double time, std::int32_t strand);

// Makes a resumed data set keep the first `count` zones with the time of its first new zone,
// because they belong to other output times with the same time. By default it keeps none.
void keepZones(void* fileHandle, std::int32_t count);

// Closes data sets that an earlier run left open, without finishing them, and restores the
// defaults of all settings.
void reset();

// Contents of an unfinished data set.
struct UnfinishedDataSet {
    std::int32_t zones = 0;               // complete zones
    double lastTime = 0;                  // time of the last zone
    std::int64_t nodes = 0, elements = 0; // of the last zone
};

// Tests whether a run could resume the unfinished data set `path` with these variables, whose names
// are separated by commas. An empty list accepts any variables. Changes no file. Returns the status
// that an open of the data set would return, and sets `set` to the contents that it could read.
std::int32_t examineUnfinished(const std::string& path, const std::string& variableList,
                               bool durable, UnfinishedDataSet& set);

// Description of a data set without the values of its arrays. It determines the size of the file.
struct DataSetParts {
    struct Value {
        std::int32_t variable = 0; // from 1, or 0 for a value of the data set
        std::string name, value;
    };
    struct Zone {
        std::string title;
        std::int64_t nodes = 0, elements = 0;
        int nodesPerElement = 0;         // in the node lists
        std::vector<std::int32_t> types; // of each variable: 1 float, 2 double, 3 int32_t
        std::vector<bool> ofElements;    // of each variable: it has a value for each element
        std::vector<bool> shared;        // of each variable: the zone shares its values
        bool sharesNodeLists = false;
        bool isFlushed = false; // a flush follows the zone
    };
    std::string title, variableList; // names separated by commas
    std::vector<Value> values;
    std::vector<Zone> zones;
};

// Return the size in bytes of the finished data set, and of the data of its zones alone.
std::int64_t dataSetBytes(const DataSetParts& parts);
std::int64_t zoneBytes(const DataSetParts& parts);

} // namespace tecio
