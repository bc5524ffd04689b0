// For points in space, reports the element of the porous medium that contains the point, and the
// interpolated head.
//
//   locate_in_mesh PREFIX INDEX < POINTS
//
// reads <prefix>o.coordinates_pm, <prefix>o.elements_pm and <prefix>o.head_pm.<index>, then x, y
// and z of one point from each line of the standard input. Built with the installed library:
//
//   c++ -std=c++20 locate_in_mesh.cpp -ltvncommon

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/search/ElementSearch.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Mesh {
    std::int32_t nodeCount = 0, sheetCount = 0;
    std::int32_t elementCount = 0, nodesPerElement = 0;
    std::vector<double> x, y, z;
    std::vector<std::int32_t> elementNodes;
};

// The number of sheets is the number of nodes with the same x and y as the first one.
std::int32_t countSheets(const Mesh& mesh) {
    std::int32_t sheets = 0;
    for (std::size_t i = 0; i < mesh.x.size(); ++i)
        if (mesh.x[i] == mesh.x[0] && mesh.y[i] == mesh.y[0]) ++sheets;
    return sheets;
}

void readMesh(const std::string& prefix, Mesh& mesh) {
    int unit = file_units::openRecordsRead(prefix + "o.coordinates_pm");
    mesh.nodeCount = file_units::readInteger(unit);
    std::vector<double> xyz;
    file_units::readArray(unit, std::int64_t{3} * mesh.nodeCount, xyz, "coordinates");
    for (std::size_t i = 0; i < xyz.size(); i += 3) {
        mesh.x.push_back(xyz[i]);
        mesh.y.push_back(xyz[i + 1]);
        mesh.z.push_back(xyz[i + 2]);
    }
    file_units::freeUnit(unit);
    mesh.sheetCount = countSheets(mesh);

    unit = file_units::openRecordsRead(prefix + "o.elements_pm");
    mesh.nodesPerElement = file_units::readInteger(unit);
    mesh.elementCount = file_units::readInteger(unit);
    file_units::readArray(unit, std::int64_t{mesh.nodesPerElement} * mesh.elementCount,
                          mesh.elementNodes, "element nodes");
    file_units::freeUnit(unit);
}

void locate(const Mesh& mesh, const std::vector<double>& heads) {
    if (mesh.sheetCount < 2) error::input_error("The mesh has no layers.");
    const std::int32_t planElements = mesh.elementCount / (mesh.sheetCount - 1);
    ElementSearch::initElementSearch(mesh.elementCount, planElements, mesh.nodesPerElement,
                                     mesh.sheetCount, mesh.elementNodes, mesh.x, mesh.y, mesh.z);
    // A point outside the mesh does not end the program. Its line is the first message about it.
    std::string message;
    ElementSearch::setErrorCallback([&](std::string_view text) {
        if (message.empty()) message = text.substr(0, text.find('\n'));
    });
    double x = 0, y = 0, z = 0;
    while (std::cin >> x >> y >> z) {
        message.clear();
        const std::int32_t element = ElementSearch::findElement3D(x, y, z);
        const double head =
            element == 0 ? 0 : ElementSearch::interpElement3DIndex(element, x, y, z, heads);
        if (!message.empty())
            std::printf("%s\n", message.c_str());
        else
            std::printf("element %d in layer %d, head %.6g\n", element,
                        (element - 1) / planElements + 1, head);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: locate_in_mesh PREFIX INDEX < POINTS\n");
        return EXIT_FAILURE;
    }
    const std::string prefix = argv[1], index = argv[2];
    try {
        Mesh mesh;
        readMesh(prefix, mesh);
        std::vector<double> heads(static_cast<std::size_t>(mesh.nodeCount));
        TVNBinaryFile::read_r8_1d(prefix + "o.head_pm." + index, mesh.nodeCount, heads.data());
        locate(mesh, heads);
    } catch (const error::RunEnded& end) {
        return end.status;
    }
    return EXIT_SUCCESS;
}
