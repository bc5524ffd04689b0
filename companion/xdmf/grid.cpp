#include "companion/xdmf/grid.hpp"

#include "companion/xdmf/xml_text.hpp"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace xdmf {

namespace {

using data_set_file::Zone;

// Three columns that are one vector, by the names of `meshrake/variables/variable_table.cpp`. Other
// columns with a direction in their names are coefficients.
struct VectorRow {
    std::string_view name;
    std::array<std::string_view, 3> components;
};
constexpr VectorRow vectorTable[] = {
    {"V", {"Vx", "Vy", "Vz"}},
    {"q", {"qx", "qy", "qz"}},
};

// The zones of isopachs are zone numbers, not output times.
constexpr std::array<std::string_view, 3> coordinateNames{"X", "Y", "Z"};
constexpr std::array<std::string_view, 3> isopachCoordinates{"X", "Y", "Z(isopach top)"};

// By zone type.
constexpr const char* topologies[] = {"\"Polyvertex\" NodesPerElement=\"1\"",
                                      "\"Polyline\" NodesPerElement=\"2\"",
                                      "\"Triangle\"",
                                      "\"Quadrilateral\"",
                                      "\"Tetrahedron\"",
                                      "\"Hexahedron\""};

// By type of the values.
constexpr const char* itemTypes[] = {"", "\"Float\" Precision=\"4\"", "\"Float\" Precision=\"8\"",
                                     "\"Int\" Precision=\"4\""};
constexpr std::int32_t integerType = 3;

// Finds the columns of these names; false unless all of them exist.
bool findColumns(const std::vector<std::string>& variables,
                 const std::array<std::string_view, 3>& names, std::array<std::size_t, 3>& found) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto column = std::ranges::find(variables, names[i]);
        if (column == variables.end()) return false;
        found[i] = static_cast<std::size_t>(column - variables.begin());
    }
    return true;
}

// A viewer shows one of several arrays with the same name.
std::string uniqueName(std::set<std::string>& taken, const std::string& name) {
    std::string unique = name;
    for (int number = 2; !taken.insert(unique).second; ++number)
        unique = name + " (" + std::to_string(number) + ")";
    return xmlName(unique);
}

void appendItem(std::string& out, const Block& block, std::int32_t type, std::int64_t position,
                const std::string& dimensions) {
    out.append("<DataItem Format=\"Binary\" DataType=")
        .append(itemTypes[type])
        .append(" Endian=\"Little\" Seek=\"")
        .append(std::to_string(position))
        .append("\" Dimensions=\"")
        .append(dimensions)
        .append("\">")
        .append(block.xmlFile)
        .append("</DataItem>\n");
}

void appendValues(std::string& out, const Block& block, const Zone& zone, std::size_t variable) {
    appendItem(out, block, zone.types[variable], zone.valuesAt[variable],
               std::to_string(valueCount(zone, variable)));
}

void appendMesh(std::string& out, const Block& block, const Zone& zone) {
    const std::int64_t corners = cornersOf(zone);
    const std::int64_t cells = corners > 0 ? zone.elements : zone.nodes;
    out.append("<Topology TopologyType=")
        .append(topologies[zone.type])
        .append(" NumberOfElements=\"")
        .append(std::to_string(cells))
        .append("\">\n");
    if (corners > 0)
        appendItem(out, block, integerType, zone.elementNodesAt,
                   std::to_string(zone.elements) + ' ' + std::to_string(corners));
    out += "</Topology>\n<Geometry GeometryType=\"X_Y_Z\">\n";
    for (const std::size_t coordinate : block.coordinates)
        appendValues(out, block, zone, coordinate);
    out += "</Geometry>\n";
}

void beginAttribute(std::string& out, const std::string& name, bool centred, const char* type) {
    out.append("<Attribute Name=\"")
        .append(name)
        .append("\" Center=\"")
        .append(centred ? "Cell" : "Node")
        .append("\" AttributeType=\"")
        .append(type)
        .append("\">\n");
}

void appendScalars(std::string& out, const Block& block, const Zone& zone) {
    for (std::size_t v = 0; v < block.xmlNames.size(); ++v) {
        if (std::ranges::find(block.coordinates, v) != block.coordinates.end()) continue;
        beginAttribute(out, block.xmlNames[v], zone.centred[v], "Scalar");
        appendValues(out, block, zone, v);
        out += "</Attribute>\n";
    }
}

void appendVectors(std::string& out, const Block& block, const Zone& zone) {
    for (const auto& [name, components] : block.vectors) {
        const std::size_t x = components[0];
        const auto same = [&zone, x](std::size_t v) {
            return zone.types[v] == zone.types[x] && zone.centred[v] == zone.centred[x];
        };
        if (!std::ranges::all_of(components, same)) continue;
        beginAttribute(out, name, zone.centred[x], "Vector");
        out.append("<DataItem ItemType=\"Function\" Function=\"JOIN($0 , $1 , $2)\" Dimensions=\"")
            .append(std::to_string(valueCount(zone, x)))
            .append(" 3\">\n");
        for (const std::size_t component : components) appendValues(out, block, zone, component);
        out += "</DataItem>\n</Attribute>\n";
    }
}

} // namespace

Block blockOf(std::string path, std::string xmlFile, data_set_file::DataSet set) {
    Block block{std::move(path), std::move(xmlFile), std::move(set), {}, {}, {}};
    const std::vector<std::string>& variables = block.set.variables;
    const bool ofTimes = findColumns(variables, coordinateNames, block.coordinates);
    block.isopachs = !ofTimes && findColumns(variables, isopachCoordinates, block.coordinates);
    if (!ofTimes && !block.isopachs)
        throw std::runtime_error(block.path + ": no variables X, Y and Z");
    std::set<std::string> taken;
    for (const std::string& name : variables) block.xmlNames.push_back(uniqueName(taken, name));
    for (const VectorRow& row : vectorTable) {
        std::array<std::size_t, 3> components{};
        if (findColumns(variables, row.components, components))
            block.vectors.push_back({uniqueName(taken, std::string(row.name)), components});
    }
    return block;
}

void appendGrid(std::string& out, const Block& block, const Zone& zone, const std::string& xmlName,
                const std::string& time) {
    out.append("<Grid Name=\"").append(xmlName).append("\" GridType=\"Uniform\">\n").append(time);
    appendMesh(out, block, zone);
    appendScalars(out, block, zone);
    appendVectors(out, block, zone);
    out += "</Grid>\n";
}

} // namespace xdmf
