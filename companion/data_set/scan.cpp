#include "companion/data_set/cursor.hpp"
#include "companion/data_set/data_set_file.hpp"

#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <limits>

namespace data_set_file {

namespace {

constexpr std::int64_t greatestCount = std::numeric_limits<std::int32_t>::max();
// Far more than a run writes. A damaged number must not take all memory for the names.
constexpr std::int64_t greatestVariables = 1000000;

void takeConstant(Cursor& cursor, std::int32_t value, const char* fault) {
    takeBetween(cursor, value, value, fault);
}

void takeFileHeader(Cursor& cursor, DataSet& set) {
    const std::vector<char> magic = takeMany<char>(cursor, 8);
    require(cursor, std::string(magic.begin(), magic.end()) == "#!TDV112", "not a binary data set");
    takeConstant(cursor, 1, "another byte order");
    takeConstant(cursor, 0, "another file type");
    set.title = takeText(cursor);
    const std::int32_t variables =
        takeBetween(cursor, 0, greatestVariables, "not a number of variables");
    for (std::int32_t v = 0; v < variables; ++v) set.variables.push_back(takeText(cursor));
}

void takeAux(Cursor& cursor, DataSet& set, bool ofVariable) {
    const auto variables = static_cast<std::int64_t>(set.variables.size());
    const std::int32_t variable =
        ofVariable ? takeBetween(cursor, 0, variables - 1, "a unit without its variable") + 1 : 0;
    const std::string name = takeText(cursor);
    takeConstant(cursor, 0, "a value that is not a text");
    const std::string value = takeText(cursor);
    if (value.find_first_not_of(' ') == std::string::npos)
        set.padding += 4 * static_cast<std::int64_t>(value.size());
    else if (ofVariable)
        set.units[variable] = value;
    else
        set.aux[name] = value;
}

Zone takeZoneHeader(Cursor& cursor, std::size_t variables) {
    Zone zone;
    zone.title = takeText(cursor);
    takeConstant(cursor, -1, "a parent zone");
    zone.strand = take(cursor);
    zone.time = take<double>(cursor);
    take(cursor); // colour
    zone.type = takeBetween(cursor, 0, 5, "not a zone type");
    zone.centred.assign(variables, false);
    if (takeBetween(cursor, 0, 1, "not a flag of locations") == 1)
        for (std::size_t v = 0; v < variables; ++v)
            zone.centred[v] = takeBetween(cursor, 0, 1, "not a location") == 1;
    takeConstant(cursor, 0, "raw face neighbours");
    takeConstant(cursor, 0, "face neighbours");
    zone.nodes = takeBetween(cursor, 0, greatestCount, "not a number of nodes");
    zone.elements = takeBetween(cursor, 0, greatestCount, "not a number of elements");
    for (int reserved = 0; reserved < 4; ++reserved)
        takeConstant(cursor, 0, "cell dimensions or auxiliary values");
    return zone;
}

void takeZoneHeaders(Cursor& cursor, DataSet& set) {
    const std::size_t variables = set.variables.size();
    for (;;) {
        const auto marker = take<float>(cursor);
        if (marker == 357.0F) return;
        if (marker == 299.0F) {
            // Each zone has at least the types of its variables in its data.
            const std::size_t least = 4 * variables * (set.zones.size() + 1);
            require(cursor, least < static_cast<std::size_t>(cursor.file.size),
                    "the file is too short for its zones");
            set.zones.push_back(takeZoneHeader(cursor, variables));
        } else if (marker == 799.0F || marker == 899.0F) {
            takeAux(cursor, set, marker == 899.0F);
        } else {
            require(cursor, false, "an unknown record");
        }
    }
}

// A share is valid only if the array of the earlier zone has the same counts and type.
void takeShares(Cursor& cursor, const DataSet& set, Zone& zone, std::int64_t earlier) {
    const std::size_t variables = zone.centred.size();
    zone.shares.assign(variables, 0);
    if (takeBetween(cursor, 0, 1, "not a flag of shares") == 1)
        for (std::int32_t& share : zone.shares)
            share = takeBetween(cursor, -1, earlier - 1, "no zone to share with") + 1;
    zone.connectivityShare = takeBetween(cursor, -1, earlier - 1, "no zone of node lists") + 1;
    zone.valuesAt.assign(variables, 0);
    for (std::size_t v = 0; v < variables; ++v) {
        if (zone.shares[v] == 0) continue;
        const Zone& source = set.zones[static_cast<std::size_t>(zone.shares[v] - 1)];
        require(cursor,
                source.types[v] == zone.types[v] && source.centred[v] == zone.centred[v] &&
                    valueCount(source, v) == valueCount(zone, v),
                "shared values of another number or type");
        zone.valuesAt[v] = source.valuesAt[v];
    }
    if (zone.connectivityShare == 0) return;
    const Zone& source = set.zones[static_cast<std::size_t>(zone.connectivityShare - 1)];
    require(cursor,
            source.type == zone.type && source.elements == zone.elements &&
                source.nodes == zone.nodes,
            "shared node lists of another number or type");
    zone.elementNodesAt = source.elementNodesAt;
}

void takeZoneData(Cursor& cursor, DataSet& set, std::size_t number) {
    Zone& zone = set.zones[number];
    const auto variables = static_cast<std::int64_t>(zone.centred.size());
    // Up to the ranges: 4 words, and 2 words and a range for each variable.
    cursor.blockBytes = 16 + 24 * variables;
    require(cursor, take<float>(cursor) == 299.0F, "no marker of a zone's data");
    for (std::int64_t v = 0; v < variables; ++v)
        zone.types.push_back(takeBetween(cursor, 1, 3, "not a type"));
    takeConstant(cursor, 0, "passive variables");
    takeShares(cursor, set, zone, static_cast<std::int64_t>(number));
    zone.ranges =
        takeMany<double>(cursor, 2 * std::count(zone.shares.begin(), zone.shares.end(), 0));
    for (std::size_t v = 0; v < zone.shares.size(); ++v)
        if (zone.shares[v] == 0)
            zone.valuesAt[v] = skip(cursor, valueCount(zone, v), valueBytes(zone, v));
    if (zone.connectivityShare == 0)
        zone.elementNodesAt = skip(cursor, zone.elements * cornersOf(zone), 4);
}

// The program may have added zones since the file was opened.
void updateSize(File& file) {
    system_calls::FileInfo info;
    if (system_calls::table.fileInfo(file.bytes.descriptor, info) == 0) file.size = info.size;
}

} // namespace

DataSet scan(File& file) {
    Cursor cursor{file};
    DataSet set;
    takeFileHeader(cursor, set);
    takeZoneHeaders(cursor, set);
    updateSize(file);
    for (std::size_t z = 0; z < set.zones.size(); ++z) takeZoneData(cursor, set, z);
    set.trailing = file.size - cursor.position;
    return set;
}

} // namespace data_set_file
