#include "companion/series/nearest.hpp"

#include <algorithm>
#include <cmath>
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

// The mean of the nodes of an element. Triangles and prisms repeat nodes as corners.
Point centreOf(std::span<const std::int32_t> corners, const Coordinates& coordinates) {
    Point centre{};
    double count = 0;
    for (std::size_t c = 0; c < corners.size(); ++c) {
        const auto earlier = corners.first(c);
        if (std::ranges::find(earlier, corners[c]) != earlier.end()) continue;
        const auto node = static_cast<std::size_t>(corners[c] - 1);
        for (std::size_t i = 0; i < 3; ++i) centre[i] += coordinates[i][node];
        ++count;
    }
    for (double& coordinate : centre) coordinate /= count;
    return centre;
}

struct Search {
    Point point;
    double square = std::numeric_limits<double>::infinity(); // of the distance
    std::int64_t number = -1;
};

std::vector<Search> searchesOf(std::span<const Point> points) {
    std::vector<Search> searches;
    for (const Point& point : points) searches.push_back({point});
    return searches;
}

void compare(std::vector<Search>& searches, std::int64_t number, const Point& candidate) {
    for (Search& search : searches) {
        double square = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double difference = candidate[i] - search.point[i];
            square += difference * difference;
        }
        if (square >= search.square || std::isnan(square)) continue;
        search.square = square;
        search.number = number;
    }
}

bool isWithin(double value, const std::vector<double>& values) {
    const auto isAtMost = [value](double v) { return v <= value; };
    const auto isAtLeast = [value](double v) { return v >= value; };
    return std::ranges::any_of(values, isAtMost) && std::ranges::any_of(values, isAtLeast);
}

std::vector<Nearest> resultsOf(const std::vector<Search>& searches, const Coordinates& coordinates,
                               const File& file, const char* items) {
    std::vector<Nearest> results;
    for (const auto& [point, square, number] : searches) {
        if (number < 0) throw std::runtime_error(file.path + ": no " + items + " near the point");
        const bool isInside =
            isWithin(point[0], coordinates[0]) && isWithin(point[1], coordinates[1]);
        results.push_back({number, std::sqrt(square), !isInside});
    }
    return results;
}

} // namespace

std::vector<Nearest> nearestNodes(const File& file, const DataSet& set, const Zone& zone,
                                  std::span<const Point> points) {
    const Coordinates coordinates = readCoordinates(file, set, zone);
    const auto& [x, y, z] = coordinates;
    std::vector<Search> searches = searchesOf(points);
    for (std::size_t n = 0; n < x.size(); ++n)
        compare(searches, static_cast<std::int64_t>(n), {x[n], y[n], z[n]});
    return resultsOf(searches, coordinates, file, "node");
}

std::vector<Nearest> nearestElements(const File& file, const DataSet& set, const Zone& zone,
                                     std::span<const Point> points) {
    checkElementNodes(file, zone);
    const Coordinates coordinates = readCoordinates(file, set, zone);
    const std::vector<std::int32_t> nodes = readElementNodes(file, zone);
    const auto corners = static_cast<std::size_t>(cornersOf(zone));
    std::vector<Search> searches = searchesOf(points);
    std::int64_t element = 0;
    for (std::size_t first = 0; first < nodes.size(); first += corners)
        compare(searches, element++,
                centreOf(std::span(nodes).subspan(first, corners), coordinates));
    return resultsOf(searches, coordinates, file, "element");
}

} // namespace series
