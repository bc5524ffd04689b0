#include "companion/xdmf/grid.hpp"

#include "companion/screen/screen.hpp"
#include "companion/xdmf/xml_text.hpp"

#include <algorithm>
#include <map>
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

// Isopachs, whose zones have zone numbers instead of output times, have another name for Z.
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
void setNames(Block& block) {
    std::vector<std::string> names;
    for (const std::string& name : block.set.variables) names.push_back(xmlName(name));
    for (const Vector& vector : block.vectors) names.push_back(vector.name);
    names = data_set_file::uniqueNames(names);
    const std::size_t columns = block.set.variables.size();
    for (std::size_t i = 0; i < block.vectors.size(); ++i)
        block.vectors[i].name = names[columns + i];
    names.resize(columns);
    block.xmlNames = std::move(names);
}

// The same file by another name for each number: a "./" or ".//" for each bit.
std::string fileAlias(const std::string& xmlFile, std::size_t number) {
    std::string alias = xmlFile;
    for (; number > 0; number /= 2) alias = (number % 2 == 0 ? "./" : ".//") + alias;
    return alias;
}

std::vector<std::string> meshFilesOf(const Block& block) {
    using Mesh = std::array<std::int64_t, 4>; // positions of coordinates and node lists
    std::map<Mesh, std::size_t> meshes;
    std::vector<std::string> files;
    for (const Zone& zone : block.set.zones) {
        const auto [x, y, z] = block.coordinates;
        const Mesh mesh{zone.valuesAt[x], zone.valuesAt[y], zone.valuesAt[z], zone.elementNodesAt};
        const std::size_t number = meshes.try_emplace(mesh, meshes.size()).first->second;
        files.push_back(fileAlias(block.xmlFile, number));
    }
    return files;
}

void appendItem(std::string& out, const std::string& file, std::int32_t type, std::int64_t position,
                const std::string& dimensions) {
    out.append("<DataItem Format=\"Binary\" DataType=")
        .append(itemTypes[type])
        .append(" Endian=\"Little\" Seek=\"")
        .append(std::to_string(position))
        .append("\" Dimensions=\"")
        .append(dimensions)
        .append("\">")
        .append(file)
        .append("</DataItem>\n");
}

void appendValues(std::string& out, const std::string& file, const Zone& zone,
                  std::size_t variable) {
    appendItem(out, file, zone.types[variable], zone.valuesAt[variable],
               std::to_string(valueCount(zone, variable)));
}

// A zone without elements, or without node lists of its elements, is shown as points. Its values of
// elements have no cells then.
bool isPoints(const Zone& zone) {
    return zone.elements == 0 || cornersOf(zone) == 0;
}

void appendMesh(std::string& out, const Block& block, const Zone& zone, const std::string& file) {
    const bool points = isPoints(zone);
    out.append("<Topology TopologyType=")
        .append(topologies[points ? 0 : zone.type])
        .append(" NumberOfElements=\"")
        .append(std::to_string(points ? zone.nodes : zone.elements))
        .append("\">\n");
    if (!points)
        appendItem(out, file, integerType, zone.elementNodesAt,
                   std::to_string(zone.elements) + ' ' + std::to_string(cornersOf(zone)));
    out += "</Topology>\n<Geometry GeometryType=\"X_Y_Z\">\n";
    for (const std::size_t coordinate : block.coordinates)
        appendValues(out, file, zone, coordinate);
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
        if (zone.centred[v] && isPoints(zone)) continue;
        beginAttribute(out, block.xmlNames[v], zone.centred[v], "Scalar");
        appendValues(out, block.xmlFile, zone, v);
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
        if (zone.centred[x] && isPoints(zone)) continue;
        beginAttribute(out, name, zone.centred[x], "Vector");
        out.append("<DataItem ItemType=\"Function\" Function=\"JOIN($0 , $1 , $2)\" Dimensions=\"")
            .append(std::to_string(valueCount(zone, x)))
            .append(" 3\">\n");
        for (const std::size_t component : components)
            appendValues(out, block.xmlFile, zone, component);
        out += "</DataItem>\n</Attribute>\n";
    }
}

// Replaces the times of isopachs by numbers in the names of their zones.
void showAtAllTimes(std::vector<Zone>& zones) {
    for (Zone& zone : zones) {
        zone.title += ' ' + screen::numberText(zone.time);
        zone.strand = -1;
    }
}

} // namespace

Block blockOf(std::string path, std::string xmlFile, data_set_file::DataSet set) {
    Block block{std::move(path), std::move(xmlFile), std::move(set)};
    const std::vector<std::string>& variables = block.set.variables;
    block.xmlTitle = block.set.zones.empty() ? block.xmlFile : xmlName(block.set.zones[0].title);
    if (findColumns(variables, isopachCoordinates, block.coordinates))
        showAtAllTimes(block.set.zones);
    else if (!findColumns(variables, coordinateNames, block.coordinates))
        throw std::runtime_error(block.path + ": no variables X, Y and Z");
    for (const VectorRow& row : vectorTable) {
        std::array<std::size_t, 3> components{};
        if (findColumns(variables, row.components, components))
            block.vectors.push_back({std::string(row.name), components});
    }
    setNames(block);
    block.meshFiles = meshFilesOf(block);
    return block;
}

void appendGrid(std::string& out, const Block& block, std::size_t number,
                const std::string& xmlName, const std::string& time) {
    const Zone& zone = block.set.zones[number];
    out.append("<Grid Name=\"").append(xmlName).append("\" GridType=\"Uniform\">\n").append(time);
    appendMesh(out, block, zone, block.meshFiles[number]);
    appendScalars(out, block, zone);
    appendVectors(out, block, zone);
    out += "</Grid>\n";
}

} // namespace xdmf
