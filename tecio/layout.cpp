#include "tecio/layout.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "numbers are written without conversion");

namespace tecio {

namespace {

constexpr std::string_view magic = "#!TDV112";
constexpr std::string_view paddingName = "_";
// Marker, name and its 0, type of the value, and the 0 after the value: 5 words of 4 bytes.
constexpr std::int64_t emptyPaddingBytes = 20;
// The value has at least one blank: after an empty value some readers lose the position of the next
// record.
constexpr std::int64_t minimumPaddingBytes = emptyPaddingBytes + 4;

// By zone type.
constexpr std::int64_t nodesPerElement[] = {0, 2, 3, 4, 4, 8};

template<class T>
void put(Bytes& out, T value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out.append(bytes, sizeof value);
}

void putInt(Bytes& out, std::int64_t value) {
    put(out, static_cast<std::int32_t>(value));
}

void putText(Bytes& out, std::string_view text) {
    for (const char c : text) putInt(out, static_cast<unsigned char>(c));
    putInt(out, 0);
}

void putAux(Bytes& out, std::string_view name, std::string_view value) {
    putText(out, name);
    putInt(out, 0); // the value is a text
    putText(out, value);
}

// Writes numbers that count from 1, with 0 for none, as numbers from 0, with -1 for none.
void putNumbers(Bytes& out, const std::vector<std::int32_t>& fromOne) {
    for (const std::int32_t number : fromOne) putInt(out, number - 1);
}

bool any(const std::vector<std::int32_t>& list, std::int32_t least) {
    for (const std::int32_t entry : list)
        if (entry >= least) return true;
    return false;
}

template<class T>
T readValue(Reader& reader) {
    T value{};
    reader.good = reader.good && reader.bytes.size() - reader.position >= sizeof value;
    if (!reader.good) return value;
    std::memcpy(&value, reader.bytes.data() + reader.position, sizeof value);
    reader.position += sizeof value;
    return value;
}

void expect(Reader& reader, bool holds) {
    reader.good = reader.good && holds;
}

std::vector<std::int32_t> readInts(Reader& reader, std::size_t count, std::int32_t least,
                                   std::int32_t greatest) {
    std::vector<std::int32_t> list(count);
    for (std::int32_t& entry : list) {
        entry = readInt(reader);
        expect(reader, least <= entry && entry <= greatest);
        entry = std::clamp(entry, least, greatest);
    }
    return list;
}

} // namespace

std::int64_t sizeOf(const Bytes& bytes) {
    return static_cast<std::int64_t>(bytes.size());
}

std::int64_t valueBytes(std::int32_t type) {
    return type == 2 ? 8 : 4;
}

std::int64_t valueCount(const Zone& zone, std::size_t variable) {
    return zone.locations[variable] == 1 ? zone.nodes : zone.elements;
}

std::int64_t nodeMapCount(const Zone& zone) {
    return zone.connectivityShare > 0 ? 0 : zone.elements * nodesPerElement[zone.type];
}

std::int32_t greatestShare(const Zone& zone) {
    std::int32_t greatest = zone.connectivityShare;
    for (const std::int32_t share : zone.shares) greatest = std::max(greatest, share);
    return greatest;
}

ZoneLayout layoutOf(const Zone& zone) {
    ZoneLayout layout;
    layout.ranges = sizeOf(dataBeginBytes(zone));
    layout.size = layout.ranges;
    for (const std::int32_t share : zone.shares) layout.size += share > 0 ? 0 : rangeBytes;
    layout.values.assign(zone.types.size(), 0);
    for (std::size_t v = 0; v < zone.types.size(); ++v) {
        if (zone.shares[v] > 0) continue;
        layout.values[v] = layout.size;
        layout.size += valueCount(zone, v) * valueBytes(zone.types[v]);
    }
    layout.nodeMap = layout.size;
    layout.size += nodeMapCount(zone) * 4;
    return layout;
}

FileHeader fileHeaderOf(std::string_view title, std::string_view variableList) {
    FileHeader header{std::string(title), {}};
    for (std::size_t begin = 0;;) {
        const std::size_t comma = variableList.find(',', begin);
        header.variables.emplace_back(variableList.substr(begin, comma - begin));
        if (comma == std::string_view::npos) return header;
        begin = comma + 1;
    }
}

Bytes fileHeaderBytes(const FileHeader& header) {
    Bytes out(magic);
    putInt(out, 1);
    putInt(out, 0);
    putText(out, header.title);
    putInt(out, static_cast<std::int64_t>(header.variables.size()));
    for (const std::string& name : header.variables) putText(out, name);
    return out;
}

Bytes auxBytes(std::string_view name, std::string_view value) {
    Bytes out;
    put(out, auxMarker);
    putAux(out, name, value);
    return out;
}

Bytes variableAuxBytes(std::int32_t variable, std::string_view name, std::string_view value) {
    Bytes out;
    put(out, variableAuxMarker);
    putInt(out, variable - 1);
    putAux(out, name, value);
    return out;
}

Bytes zoneHeaderBytes(const Zone& zone) {
    Bytes out;
    put(out, zoneMarker);
    putText(out, zone.title);
    putInt(out, -1); // no parent
    putInt(out, zone.strand);
    put(out, zone.time);
    putInt(out, -1); // colour
    putInt(out, zone.type);
    const std::vector<std::int32_t> nodal(zone.locations.size(), 1);
    putInt(out, zone.locations != nodal);
    if (zone.locations != nodal)
        for (const std::int32_t location : zone.locations) putInt(out, 1 - location);
    putInt(out, 0); // no face neighbours, neither raw nor of the user
    putInt(out, 0);
    putInt(out, zone.nodes);
    putInt(out, zone.elements);
    for (int reserved = 0; reserved < 3; ++reserved) putInt(out, 0);
    putInt(out, 0); // no auxiliary values
    return out;
}

Bytes dataBeginBytes(const Zone& zone) {
    Bytes out;
    put(out, zoneMarker);
    for (const std::int32_t type : zone.types) putInt(out, type);
    putInt(out, 0); // no passive variables
    putInt(out, any(zone.shares, 1));
    if (any(zone.shares, 1)) putNumbers(out, zone.shares);
    putInt(out, zone.connectivityShare - 1);
    return out;
}

Bytes paddingAt(std::int64_t at) {
    const std::int64_t left = leftOnPage(at);
    const std::int64_t size = left < minimumPaddingBytes ? left + pageBytes : left;
    return auxBytes(paddingName,
                    std::string(static_cast<std::size_t>((size - emptyPaddingBytes) / 4), ' '));
}

Bytes headersEndBytes() {
    Bytes out;
    put(out, endMarker);
    return out;
}

std::int64_t leftOnPage(std::int64_t at) {
    return pageBytes - at % pageBytes;
}

void addHeader(Bytes& out, std::int64_t at, const Bytes& header) {
    const std::int64_t left = leftOnPage(at + sizeOf(out)) - sizeOf(header);
    if (left != 0 && left < minimumPaddingBytes) padPage(out, at);
    out += header;
}

void addPadding(Bytes& out, std::int64_t at, std::int64_t end) {
    while (at + sizeOf(out) < end) out += paddingAt(at + sizeOf(out));
}

void padPage(Bytes& out, std::int64_t at) {
    if ((at + sizeOf(out)) % pageBytes != 0) out += paddingAt(at + sizeOf(out));
}

// A long header begins at a page. The padding after it has 0 or at least `minimumPaddingBytes`
// bytes.
std::int64_t pagesOf(const Bytes& header) {
    return (sizeOf(header) + minimumPaddingBytes - 1) / pageBytes + 1;
}

std::int32_t readInt(Reader& reader) {
    return readValue<std::int32_t>(reader);
}

float readFloat(Reader& reader) {
    return readValue<float>(reader);
}

std::uint64_t readWord(Reader& reader) {
    return readValue<std::uint64_t>(reader);
}

std::string readText(Reader& reader) {
    std::string text;
    for (;;) {
        const std::int32_t c = readInt(reader);
        expect(reader, 0 <= c && c < 256);
        if (!reader.good || c == 0) return text;
        text += static_cast<char>(c);
    }
}

FileHeader readFileHeader(Reader& reader) {
    FileHeader header;
    expect(reader, reader.bytes.substr(reader.position).starts_with(magic));
    reader.position += reader.good ? magic.size() : 0;
    expect(reader, readInt(reader) == 1 && readInt(reader) == 0);
    header.title = readText(reader);
    const std::int32_t count = readInt(reader);
    for (std::int32_t v = 0; reader.good && v < count; ++v)
        header.variables.push_back(readText(reader));
    return header;
}

Zone readZone(Reader& reader, std::size_t variables) {
    constexpr std::int32_t greatest = 2147483647;
    Zone zone;
    expect(reader, readFloat(reader) == zoneMarker);
    zone.title = readText(reader);
    expect(reader, readInt(reader) == -1);
    zone.strand = readInt(reader);
    zone.time = readValue<double>(reader);
    expect(reader, readInt(reader) == -1);
    zone.type = readInts(reader, 1, 0, 5)[0];
    zone.locations.assign(variables, 1);
    if (readInts(reader, 1, 0, 1)[0] == 1) {
        zone.locations = readInts(reader, variables, 0, 1);
        for (std::int32_t& location : zone.locations) location = 1 - location;
    }
    readInts(reader, 2, 0, 0);
    zone.nodes = readInts(reader, 1, 0, greatest)[0];
    zone.elements = readInts(reader, 1, 0, greatest)[0];
    readInts(reader, 4, 0, 0);

    expect(reader, readFloat(reader) == zoneMarker);
    zone.types = readInts(reader, variables, 1, 3);
    readInts(reader, 1, 0, 0);
    zone.shares.assign(variables, 0);
    if (readInts(reader, 1, 0, 1)[0] == 1) {
        zone.shares = readInts(reader, variables, -1, greatest - 1);
        for (std::int32_t& share : zone.shares) ++share;
    }
    zone.connectivityShare = readInts(reader, 1, -1, greatest - 1)[0] + 1;
    return zone;
}

} // namespace tecio
