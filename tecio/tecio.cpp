#include "tecio/tecio.h"

#include "tecio/data_file.hpp"
#include "tecio/own_functions.hpp"
#include "tecio/status.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

using tecio::DataFile;
using tecio::invalidCall;

namespace {

struct State {
    // Open data sets. One is discarded when its name is opened again.
    std::vector<std::unique_ptr<DataFile>> open;
    bool durable = false;       // for data sets opened later
    bool sidecarFailed = false; // in the last call that failed
};
State state;

void closeAndDiscard(DataFile& file) {
    byte_file::close(file.file);
    file_replacement::discard(file.replacement);
    byte_file::close(file.sidecar.file);
}

void closeAndDiscard(const std::string& path) {
    std::erase_if(state.open, [&](const std::unique_ptr<DataFile>& file) {
        const bool matches = file->path == path;
        if (matches) closeAndDiscard(*file);
        return matches;
    });
}

DataFile* find(const void* handle) {
    const auto it = std::find_if(state.open.begin(), state.open.end(),
                                 [&](const auto& file) { return file.get() == handle; });
    return it == state.open.end() ? nullptr : it->get();
}

// Calls `step` for the data set of a handle. After a failure every call but the close is refused,
// so that nothing more is written.
template<class Step>
int32_t runStep(void* handle, Step step) {
    DataFile* file = find(handle);
    if (!file || file->failed) return invalidCall;
    int status = io_layer::outOfMemory;
    try {
        status = step(*file);
    } catch (const std::bad_alloc&) {
    }
    file->failed = status != io_layer::ok;
    if (file->failed) state.sidecarFailed = file->sidecarFailed;
    return status;
}

template<class Step>
int32_t runZoneStep(void* handle, int32_t zone, int32_t partition, Step step) {
    return runStep(handle, [&](DataFile& file) {
        const bool current = zone > 0 && zone == file.current.number && partition == 0;
        return current ? step(file) : invalidCall;
    });
}

int openDataSet(DataFile& file, const char* title, const char* variableList) {
    file.fileHeader = tecio::fileHeaderOf(title, variableList);
    bool sidecarFound = false, found = false;
    int status =
        tecio::sidecarStatus(file, io_layer::exists(tecio::sidecarPath(file.path), sidecarFound));
    if (status == io_layer::ok) status = io_layer::exists(file.path, found);
    if (status != io_layer::ok) return status;
    return sidecarFound && found ? tecio::resumeDataFile(file) : tecio::createDataFile(file);
}

template<class Record>
int addAux(DataFile& file, const char* value, Record record) {
    if (file.headerWritten) return invalidCall;
    const std::string_view text = value;
    if (text.find_first_not_of(' ') != std::string_view::npos) file.aux += record(text);
    return io_layer::ok;
}

bool allIn(const std::vector<std::int32_t>& list, std::int32_t least, std::int32_t greatest) {
    return std::all_of(list.begin(), list.end(),
                       [=](std::int32_t entry) { return least <= entry && entry <= greatest; });
}

template<class T>
int32_t writeValues(void* handle, int32_t zone, int32_t var, int32_t partition, int64_t count,
                    const T* values, std::int32_t type) {
    return runZoneStep(handle, zone, partition, [&](DataFile& file) -> int {
        const std::vector<std::int32_t>& types = file.current.zone.types;
        if (var < 1 || var > static_cast<std::int32_t>(types.size())) return invalidCall;
        const auto v = static_cast<std::size_t>(var - 1);
        if (types[v] != type) return invalidCall;
        return tecio::writeValues(file, v, count, values);
    });
}

} // namespace

std::int32_t tecio::examineUnfinished(const std::string& path, const std::string& variableList,
                                      bool durable, UnfinishedDataSet& set) {
    DataFile file;
    file.path = path;
    file.durable = durable;
    file.readOnly = true;
    file.fileHeader = fileHeaderOf("", variableList);
    const int status = resumeDataFile(file);
    set.zones = static_cast<std::int32_t>(file.zones.size());
    if (!file.zones.empty()) {
        set.lastTime = file.zones.back().time;
        set.nodes = file.zones.back().nodes;
        set.elements = file.zones.back().elements;
    }
    closeAndDiscard(file);
    return status;
}

void tecio::reset() {
    for (const auto& file : state.open) closeAndDiscard(*file);
    state = {};
}

void tecio::setDurable(bool durable) {
    state.durable = durable;
}

bool tecio::sidecarFailed() {
    return state.sidecarFailed;
}

std::int32_t tecio::resumedZonesAt(const void* fileHandle, double time, std::int32_t strand) {
    const DataFile* file = find(fileHandle);
    return file ? resumedZonesAt(*file, time, strand) : 0;
}

void tecio::keepZones(void* fileHandle, std::int32_t count) {
    if (DataFile* file = find(fileHandle)) file->zonesKept = count;
}

int32_t tecFileWriterOpen(const char* fileName, const char* dataSetTitle, const char* variableList,
                          int32_t fileFormat, int32_t fileType, int32_t, void* gridFileHandle,
                          void** fileHandle) {
    *fileHandle = nullptr;
    state.sidecarFailed = false;
    if (fileFormat != 1 || fileType != 0 || gridFileHandle) return invalidCall;
    int status = io_layer::outOfMemory;
    std::string path;
    try {
        path = std::string(fileName) + ".szplt";
        closeAndDiscard(path);
        state.open.push_back(std::make_unique<DataFile>());
        DataFile& file = *state.open.back();
        file.path = path;
        file.durable = file.sidecar.durable = state.durable;
        status = openDataSet(file, dataSetTitle, variableList);
        state.sidecarFailed = file.sidecarFailed;
        if (status == io_layer::ok) *fileHandle = &file;
    } catch (const std::bad_alloc&) {
    }
    if (status != io_layer::ok) closeAndDiscard(path);
    return status;
}

int32_t tecFileWriterFlush(void* fileHandle, int32_t, const int32_t*) {
    return runStep(fileHandle, tecio::flush);
}

int32_t tecFileWriterClose(void** fileHandle) {
    const int32_t status = runStep(*fileHandle, tecio::finish);
    if (const DataFile* file = find(*fileHandle)) closeAndDiscard(std::string(file->path));
    *fileHandle = nullptr;
    return status;
}

int32_t tecDataSetAddAuxData(void* fileHandle, const char* name, const char* value) {
    return runStep(fileHandle, [&](DataFile& file) {
        return addAux(file, value,
                      [&](std::string_view text) { return tecio::auxBytes(name, text); });
    });
}

int32_t tecVarAddAuxData(void* fileHandle, int32_t var, const char* name, const char* value) {
    return runStep(fileHandle, [&](DataFile& file) {
        if (var < 1 || var > static_cast<std::int32_t>(file.fileHeader.variables.size()))
            return invalidCall;
        return addAux(file, value, [&](std::string_view text) {
            return tecio::variableAuxBytes(var, name, text);
        });
    });
}

int32_t tecZoneCreateFE(void* fileHandle, const char* zoneTitle, int32_t zoneType, int64_t numNodes,
                        int64_t numElements, const int32_t* varTypes,
                        const int32_t* shareVarFromZone, const int32_t* valueLocations,
                        const int32_t* passiveVarList, int32_t connectivityShareZone,
                        int64_t numFaceConnections, int32_t, int32_t* zone) {
    return runStep(fileHandle, [&](DataFile& file) -> int {
        const auto listOf = [&](const int32_t* first) {
            return std::vector<std::int32_t>(first, first + file.fileHeader.variables.size());
        };
        constexpr std::int64_t greatest = 2147483647;
        if (zoneType < 0 || zoneType > 5 || numFaceConnections != 0) return invalidCall;
        if (numNodes < 0 || numNodes > greatest || numElements < 0 || numElements > greatest)
            return invalidCall;
        tecio::Zone created;
        created.title = zoneTitle;
        created.type = zoneType;
        created.nodes = numNodes;
        created.elements = numElements;
        created.types = listOf(varTypes);
        created.shares = listOf(shareVarFromZone);
        created.locations = listOf(valueLocations);
        created.connectivityShare = connectivityShareZone;
        const bool fits = allIn(created.types, 1, 3) && allIn(created.locations, 0, 1) &&
                          allIn(listOf(passiveVarList), 0, 0);
        return fits ? tecio::beginZone(file, std::move(created), *zone) : invalidCall;
    });
}

int32_t tecZoneSetUnsteadyOptions(void* fileHandle, int32_t zone, double solutionTime,
                                  int32_t strand) {
    return runZoneStep(fileHandle, zone, 0, [&](DataFile& file) {
        return std::isfinite(solutionTime) && strand >= 0
                   ? tecio::setTime(file, solutionTime, strand)
                   : invalidCall;
    });
}

int32_t tecZoneNodeMapWrite32(void* fileHandle, int32_t zone, int32_t partition,
                              int32_t nodesAreOneBased, int64_t count, const int32_t* nodes) {
    return runZoneStep(fileHandle, zone, partition, [&](DataFile& file) {
        return tecio::writeNodes(file, count, nodes, nodesAreOneBased ? 1 : 0);
    });
}

int32_t tecZoneVarWriteFloatValues(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                   int64_t count, const float* values) {
    return writeValues(fileHandle, zone, var, partition, count, values, 1);
}

int32_t tecZoneVarWriteDoubleValues(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                    int64_t count, const double* values) {
    return writeValues(fileHandle, zone, var, partition, count, values, 2);
}

int32_t tecZoneVarWriteInt32Values(void* fileHandle, int32_t zone, int32_t var, int32_t partition,
                                   int64_t count, const int32_t* values) {
    return writeValues(fileHandle, zone, var, partition, count, values, 3);
}
