#include "companion/series/nearest.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

namespace series {

namespace {

using data_set_file::DataSet;
using data_set_file::File;
using data_set_file::Zone;

using Coordinates = std::array<std::vector<double>, 3>;

Coordinates readCoordinates(const File& file, const DataSet& set, const Zone& zone) {
    Coordinates coordinates;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto found = std::ranges::find(set.variables, std::string(1, "XYZ"[i]));
        const auto column = static_cast<std::size_t>(found - set.variables.begin());
        if (found == set.variables.end() || zone.centred[column])
            throw std::runtime_error(file.path + ": no coordinates X, Y and Z of the nodes");
        coordinates[i] = readValues(file, zone, column);
    }
    return coordinates;
}

struct Nearest {
    Point point;
    double square = std::numeric_limits<double>::infinity(); // of the distance
    std::int64_t number = -1;
};

void compare(Nearest& nearest, std::int64_t number, const Point& candidate) {
    double square = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const double difference = candidate[i] - nearest.point[i];
        square += difference * difference;
    }
    if (square >= nearest.square || square != square) return;
    nearest.square = square;
    nearest.number = number;
}

std::int64_t foundIn(const Nearest& nearest, const File& file, const char* items) {
    if (nearest.number < 0)
        throw std::runtime_error(file.path + ": no " + items + " near the point");
    return nearest.number;
}

} // namespace

std::int64_t nearestNode(const File& file, const DataSet& set, const Zone& zone,
                         const Point& point) {
    const auto [x, y, z] = readCoordinates(file, set, zone);
    Nearest nearest{point};
    for (std::size_t n = 0; n < x.size(); ++n)
        compare(nearest, static_cast<std::int64_t>(n), {x[n], y[n], z[n]});
    return foundIn(nearest, file, "node");
}

std::int64_t nearestElement(const File& file, const DataSet& set, const Zone& zone,
                            const Point& point) {
    checkElementNodes(file, zone);
    const Coordinates coordinates = readCoordinates(file, set, zone);
    const std::vector<std::int32_t> nodes = readElementNodes(file, zone);
    const std::int64_t corners = cornersOf(zone);
    Nearest nearest{point};
    for (std::int64_t e = 0; corners > 0 && e < zone.elements; ++e) {
        Point centre{};
        for (std::int64_t c = 0; c < corners; ++c) {
            const auto node =
                static_cast<std::size_t>(nodes[static_cast<std::size_t>(e * corners + c)] - 1);
            for (std::size_t i = 0; i < 3; ++i)
                centre[i] += coordinates[i][node] / static_cast<double>(corners);
        }
        compare(nearest, e, centre);
    }
    return foundIn(nearest, file, "element");
}

} // namespace series
