#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Binary data sets of any names and sizes, for the subcommands that read them.
namespace made_set {

// A row of bricks. Every third variable is a 32-bit real, and every variable that ends in x, y or z
// is cell-centred. With `sharedMesh` the zones after the first share X, Y, Z and the node lists.
struct Shape {
    std::vector<std::string> variables{"Head"}; // after X, Y and Z
    std::vector<double> times{0};
    std::int64_t elements = 2;
    std::string title = "pm"; // of the zones
    std::int32_t strand = 1;  // -1: no time
    bool sharedMesh = true;
    std::int32_t firstNode = 1; // in the node lists; another number makes them invalid
};

// Value of a variable, counted from 0 after X, Y and Z, at a node or element from 0.
double valueAt(std::size_t variable, double time, std::int64_t index);

// Writes PATH.szplt.
void put(const std::string& path, const Shape& shape);

} // namespace made_set
