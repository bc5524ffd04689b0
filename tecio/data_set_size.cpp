#include "tecio/data_file.hpp"
#include "tecio/own_functions.hpp"

namespace tecio {

namespace {

// Returns a type of zones with node lists of this length. A zone of type 0 has no node lists.
std::int32_t zoneType(int nodesPerElement) {
    constexpr std::int32_t none = 0, lines = 1, quadrilaterals = 3, bricks = 5;
    return nodesPerElement == 2   ? lines
           : nodesPerElement == 4 ? quadrilaterals
           : nodesPerElement == 8 ? bricks
                                  : none;
}

// Shared arrays are those of zone 1. The number of that zone does not change the size.
Zone zoneOf(const DataSetParts::Zone& parts) {
    Zone zone;
    zone.title = parts.title;
    zone.type = zoneType(parts.nodesPerElement);
    zone.nodes = parts.nodes;
    zone.elements = parts.elements;
    zone.types = parts.types;
    for (const bool ofElements : parts.ofElements) zone.locations.push_back(ofElements ? 0 : 1);
    for (const bool shared : parts.shared) zone.shares.push_back(shared ? 1 : 0);
    zone.connectivityShare = parts.sharesNodeLists ? 1 : 0;
    return zone;
}

// Adds the headers of new zones as a flush does. If they do not fit before the data, the data begin
// where those of a copy with more padding begin.
void addHeaders(DataFile& file) {
    if (file.headerEnds.size() == file.zones.size()) return;
    const std::int64_t at = headersEnd(file, file.headerEnds.size());
    const Bytes pages = pagesToPublish(file);
    if (fitsBeforeData(file, at, pages)) return;
    file.dataAt = sizeOf(bytesBeforeData(file, grownPadding(file)));
}

} // namespace

std::int64_t zoneBytes(const DataSetParts& parts) {
    std::int64_t bytes = 0;
    for (const DataSetParts::Zone& zone : parts.zones) bytes += layoutOf(zoneOf(zone)).size;
    return bytes;
}

std::int64_t dataSetBytes(const DataSetParts& parts) {
    DataFile file;
    file.fileHeader = fileHeaderOf(parts.title, parts.variableList);
    for (const auto& [variable, name, value] : parts.values) {
        if (value.find_first_not_of(' ') == std::string::npos) continue;
        file.aux += variable > 0 ? variableAuxBytes(variable, name, value) : auxBytes(name, value);
    }
    for (const DataSetParts::Zone& zone : parts.zones) {
        if (file.zones.empty()) { // the header of a new file has no zones
            const std::int64_t padding = initialPadding(layoutOf(zoneOf(zone)).size);
            file.dataAt = sizeOf(bytesBeforeData(file, padding));
        }
        file.zones.push_back(zoneOf(zone));
        if (zone.isFlushed) addHeaders(file);
    }
    addHeaders(file);
    return file.dataAt + zoneBytes(parts);
}

} // namespace tecio
