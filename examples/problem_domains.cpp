#include "examples/problem_domains.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace problem_domains {

using problem_mesh::Column;
using problem_mesh::columnNumber;
using problem_mesh::Mesh;
using problem_mesh::nodeNumber;

namespace {

using Point = std::array<double, 3>;

Point nodePoint(const Mesh& mesh, std::int32_t node) {
    const Column& column = problem_mesh::nodeColumn(mesh, node);
    return {column.x, column.y, problem_mesh::nodeElevation(mesh, node)};
}

double distance(const Point& a, const Point& b) {
    return std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
}

double triangleArea(const Point& a, const Point& b, const Point& c) {
    const Point u{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const Point v{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    return 0.5 * std::hypot(u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                            u[0] * v[1] - u[1] * v[0]);
}

// Length of a line element, area of any other.
double extent(const Mesh& mesh, const std::int32_t* nodes, std::int32_t used) {
    const Point first = nodePoint(mesh, nodes[0]);
    if (used == 2) return distance(first, nodePoint(mesh, nodes[1]));
    double area = 0;
    for (std::int32_t k = 2; k < used; ++k)
        area += triangleArea(first, nodePoint(mesh, nodes[k - 1]), nodePoint(mesh, nodes[k]));
    return area;
}

// Adds an element of a domain that is not 3D. Its volume is its length times the `section` in
// square metres, or its area times the `section` in metres. An element with fewer nodes than
// nodesPerElement has 0 in the last entries.
void addElement(const Mesh& mesh, Domain& domain, const std::vector<std::int32_t>& nodes, int zone,
                double section) {
    Centre centre;
    std::vector<std::int32_t> columns;
    for (const std::int32_t node : nodes) {
        columns.push_back((node - 1) % static_cast<std::int32_t>(mesh.columns.size()));
        centre.z += problem_mesh::nodeElevation(mesh, node) / static_cast<double>(nodes.size());
    }
    centre.column = problem_mesh::meanColumn(mesh, columns);
    centre.volume = section * extent(mesh, nodes.data(), static_cast<std::int32_t>(nodes.size()));
    domain.centres.push_back(centre);
    domain.elementZone.push_back(zone);
    for (std::size_t k = 0; k < static_cast<std::size_t>(domain.nodesPerElement); ++k)
        domain.elementNodes.push_back(k < nodes.size() ? nodes[k] : 0);
}

// Adds line elements between successive nodes. The two halves of the line are zones 1 and 2.
void addLine(const Mesh& mesh, Domain& domain, std::vector<std::int32_t> nodes, double section) {
    domain.nodesPerElement = 2;
    for (std::size_t k = 1; k < nodes.size(); ++k)
        addElement(mesh, domain, {nodes[k - 1], nodes[k]}, 2 * k < nodes.size() ? 1 : 2, section);
    domain.pmNode = std::move(nodes);
}

void buildPm(const Mesh& mesh, Domain& domain) {
    domain.nodesPerElement = 2 * problem_mesh::cornersPerCell(mesh);
}

// The macropores of the hill sides: the elements of pm with a zone other than 0, and their nodes.
void buildDual(const Mesh& mesh, Domain& domain) {
    domain.nodesPerElement = 2 * problem_mesh::cornersPerCell(mesh);
    std::vector<bool> touched(static_cast<std::size_t>(problem_mesh::nodeCount(mesh)) + 1);
    std::array<std::int32_t, 8> nodes{};
    for (std::int32_t element = 0; element < problem_mesh::elementCount(mesh); ++element) {
        if (fileZone(mesh, Tag::dual, element) == 0) continue;
        domain.pmElement.push_back(element);
        const std::int32_t used = problem_mesh::elementNodes(mesh, element, nodes.data());
        for (std::int32_t k = 0; k < used; ++k)
            touched[static_cast<std::size_t>(nodes[static_cast<std::size_t>(k)])] = true;
    }
    for (std::size_t node = 1; node < touched.size(); ++node)
        if (touched[node]) domain.pmNode.push_back(static_cast<std::int32_t>(node));
}

// The land surface, on the top sheet. Zones are 1 hill side, 2 banks, 3 stream.
void buildOlf(const Mesh& mesh, Domain& domain, bool walls) {
    domain.nodesPerElement = 4;
    const auto columns = static_cast<std::int32_t>(mesh.columns.size());
    for (std::int32_t column = 0; column < columns; ++column)
        domain.pmNode.push_back(nodeNumber(mesh, column, mesh.layers));
    for (std::int32_t column = 0; walls && column < columns; ++column) {
        if (!mesh.columns[static_cast<std::size_t>(column)].wall) continue;
        domain.doubledNodes.push_back(column + 1);
        domain.pmNode.push_back(nodeNumber(mesh, column, mesh.layers));
    }
    const auto corners = static_cast<std::size_t>(problem_mesh::cornersPerCell(mesh));
    for (const problem_mesh::Cell& cell : mesh.cells) {
        std::vector<std::int32_t> nodes;
        for (std::size_t k = 0; k < corners; ++k)
            nodes.push_back(nodeNumber(mesh, cell.corners[k], mesh.layers));
        const int zone = cell.centre.stream > 0.5 ? 3 : cell.centre.hill < 0.12 ? 2 : 1;
        addElement(mesh, domain, nodes, zone, 0.0047);
    }
}

// The element of pm on the west or east side of a face of the fracture plane.
std::int32_t sideElement(const Mesh& mesh, std::int32_t i, std::int32_t j, std::int32_t layer,
                         bool west) {
    const std::int32_t quad = j * mesh.nx + (west ? i - 1 : i);
    const auto cells = static_cast<std::int32_t>(mesh.cells.size());
    // The first triangle of a quad contains its east side, the second its west side.
    const std::int32_t cell = mesh.prisms ? 2 * quad + (west ? 0 : 1) : quad;
    return layer * cells + cell + 1;
}

// A vertical fracture across the valley, in the lower three quarters of the layers. Its lower half
// is zone 1, the upper half zone 2.
void buildFrac(const Mesh& mesh, Domain& domain) {
    domain.nodesPerElement = 4;
    const std::int32_t i = std::max(1, mesh.nx / 3);
    const std::int32_t layers = std::max(1, mesh.layers * 3 / 4);
    const auto node = [&mesh, i](std::int32_t j, std::int32_t sheet) {
        return nodeNumber(mesh, columnNumber(mesh, i, j), sheet);
    };
    for (std::int32_t sheet = 0; sheet <= layers; ++sheet)
        for (std::int32_t j = 0; j <= mesh.ny; ++j) domain.pmNode.push_back(node(j, sheet));
    std::vector<std::int32_t> east;
    for (std::int32_t layer = 0; layer < layers; ++layer) {
        for (std::int32_t j = 0; j < mesh.ny; ++j) {
            const double aperture = 2.7e-4 * (1 + 0.42 * std::sin(0.9 * j + 1.7 * layer));
            const int zone = 2 * layer < layers ? 1 : 2;
            addElement(
                mesh, domain,
                {node(j, layer), node(j + 1, layer), node(j + 1, layer + 1), node(j, layer + 1)},
                zone, aperture);
            domain.aperture.push_back(aperture);
            domain.sideElements.push_back(sideElement(mesh, i, j, layer, true));
            east.push_back(sideElement(mesh, i, j, layer, false));
        }
    }
    domain.sideElements.insert(domain.sideElements.end(), east.begin(), east.end());
}

void buildChan(const Mesh& mesh, Domain& domain) {
    std::vector<std::int32_t> nodes;
    for (std::int32_t i = 0; i <= mesh.nx; ++i)
        nodes.push_back(nodeNumber(mesh, problem_mesh::streamColumn(mesh, i), mesh.layers));
    addLine(mesh, domain, std::move(nodes), 1.83);
}

// A borehole on the hill side, from the land surface to a third of the layers above the bottom.
void buildWell(const Mesh& mesh, Domain& domain) {
    const std::int32_t column = columnNumber(mesh, mesh.nx / 2, mesh.ny * 3 / 4);
    std::vector<std::int32_t> nodes;
    for (std::int32_t sheet = mesh.layers / 3; sheet <= mesh.layers; ++sheet)
        nodes.push_back(nodeNumber(mesh, column, sheet));
    addLine(mesh, domain, std::move(nodes), 0.0182);
}

// A drain below a field, along the valley.
void buildTile(const Mesh& mesh, Domain& domain) {
    const std::int32_t first = mesh.nx / 4;
    const std::int32_t last = std::max(first + 1, mesh.nx * 3 / 4);
    std::vector<std::int32_t> nodes;
    for (std::int32_t i = first; i <= last; ++i)
        nodes.push_back(nodeNumber(mesh, columnNumber(mesh, i, mesh.ny / 4), mesh.layers - 1));
    addLine(mesh, domain, std::move(nodes), 0.0079);
}

void buildNodesAndElements(const Mesh& mesh, Domain& domain, bool walls) {
    switch (domain.tag) {
    case Tag::pm:
        return buildPm(mesh, domain);
    case Tag::dual:
        return buildDual(mesh, domain);
    case Tag::olf:
        return buildOlf(mesh, domain, walls);
    case Tag::frac:
        return buildFrac(mesh, domain);
    case Tag::chan:
        return buildChan(mesh, domain);
    case Tag::well:
        return buildWell(mesh, domain);
    case Tag::tile:
        return buildTile(mesh, domain);
    }
}

} // namespace

std::vector<Domain> build(const Mesh& mesh, TagSet included, TagSet sharing, bool walls) {
    std::vector<Domain> domains;
    std::int32_t globalNodes = 0;
    for (unsigned number = 0; number < names.size(); ++number) {
        const auto tag = static_cast<Tag>(number);
        if ((included & bit(tag)) == 0 && tag != Tag::pm) continue;
        Domain domain;
        domain.tag = tag;
        domain.nodeOffset = globalNodes;
        domain.sharesNodes = (sharing & bit(tag)) != 0 && tag != Tag::pm;
        buildNodesAndElements(mesh, domain, walls);
        if (domain.sharesNodes) {
            std::sort(domain.pmNode.begin(), domain.pmNode.end());
        } else {
            globalNodes += nodeCount(mesh, domain);
        }
        domains.push_back(std::move(domain));
    }
    return domains;
}

std::int32_t nodeCount(const Mesh& mesh, const Domain& domain) {
    if (domain.tag == Tag::pm) return problem_mesh::nodeCount(mesh);
    return static_cast<std::int32_t>(domain.pmNode.size());
}

std::int32_t elementCount(const Mesh& mesh, const Domain& domain) {
    switch (domain.tag) {
    case Tag::pm:
        return problem_mesh::elementCount(mesh);
    case Tag::dual:
        return static_cast<std::int32_t>(domain.pmElement.size());
    default:
        return static_cast<std::int32_t>(domain.centres.size());
    }
}

int fileZone(const Mesh& mesh, Tag tag, std::int32_t pmElement) {
    const Column& centre =
        mesh.cells[static_cast<std::size_t>(pmElement) % mesh.cells.size()].centre;
    const int ground = problem_mesh::groundZone(centre, elementElevation(mesh, pmElement));
    if (tag == Tag::pm) return ground;
    const auto layer = static_cast<std::size_t>(pmElement) / mesh.cells.size();
    const bool macropores =
        layer >= static_cast<std::size_t>(mesh.layers / 2) && centre.hill > 0.06;
    if (!macropores) return 0;
    return ground == 4 ? 1 : 2;
}

Place nodePlace(const Mesh& mesh, const Domain& domain, std::int32_t node) {
    const std::int32_t pmNode =
        domain.tag == Tag::pm ? node + 1 : domain.pmNode[static_cast<std::size_t>(node)];
    const auto sheetNodes = static_cast<std::int32_t>(mesh.columns.size());
    const std::int32_t sheet = (pmNode - 1) / sheetNodes;
    const std::int32_t column = (pmNode - 1) - sheet * sheetNodes;
    Place place;
    place.column = &mesh.columns[static_cast<std::size_t>(column)];
    place.z = elevation(*place.column, mesh.sheetDepth[static_cast<std::size_t>(sheet)]);
    place.groundZone = problem_mesh::groundZone(*place.column, place.z);
    place.cellLength = mesh.cellLength;
    place.beyondWall = domain.tag == Tag::olf && node >= sheetNodes;
    return place;
}

Place elementPlace(const Mesh& mesh, const Domain& domain, std::int32_t element) {
    Place place;
    place.cellLength = mesh.cellLength;
    if (domain.tag == Tag::pm || domain.tag == Tag::dual) {
        const std::int32_t pmElement =
            domain.tag == Tag::pm ? element : domain.pmElement[static_cast<std::size_t>(element)];
        place.column = &mesh.cells[static_cast<std::size_t>(pmElement) % mesh.cells.size()].centre;
        place.z = problem_mesh::elementElevation(mesh, pmElement);
        place.volume = problem_mesh::elementVolume(mesh, pmElement);
        place.zone = fileZone(mesh, domain.tag, pmElement);
    } else {
        const Centre& centre = domain.centres[static_cast<std::size_t>(element)];
        place.column = &centre.column;
        place.z = centre.z;
        place.volume = centre.volume;
        place.zone = domain.elementZone[static_cast<std::size_t>(element)];
    }
    place.groundZone = problem_mesh::groundZone(*place.column, place.z);
    return place;
}

} // namespace problem_domains
