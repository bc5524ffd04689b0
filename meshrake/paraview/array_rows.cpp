#include "meshrake/paraview/array_rows.hpp"

#include "tvncommon/io/file_units.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <array>
#include <cmath>
#include <cstddef>

namespace paraview {

namespace {

constexpr int narrowWidth = 15;
constexpr int narrowDigits = 5;
constexpr std::size_t scalarsPerLine = 6;

// A reader with single precision may fail at smaller magnitudes.
constexpr double leastShown = static_cast<double>(1.0e-30F);

void writeLabel(std::string_view label, std::int32_t values, std::int32_t dataIndex, int unit) {
    const std::size_t comma = label.find(',');
    file_units::writeLine(unit, "");
    if (dataIndex == 1)
        file_units::writeLine(unit, std::string(label.substr(0, comma)) + " " + count(values));
    file_units::writeLine(unit, label.substr(comma + 1));
}

template<class T>
void writeScalars(std::span<const T> values, int unit) {
    std::string line;
    for (std::size_t i = 0; i < values.size(); ++i) {
        line += narrowReal(static_cast<double>(values[i]));
        if ((i + 1) % scalarsPerLine != 0 && i + 1 < values.size()) continue;
        file_units::writeLine(unit, line);
        line.clear();
    }
}

template<class T, std::size_t N>
void writeVectors(const std::array<std::span<const T>, N>& components, const Extent& extent,
                  std::string_view label, std::int32_t dataIndex, int unit) {
    writeLabel(label, extent.count, dataIndex, unit);
    std::string line;
    for (std::size_t i = 0; i < components[0].size(); ++i) {
        if (!extent.mask[i]) continue;
        line.clear();
        for (const std::span<const T>& component : components)
            line += narrowReal(static_cast<double>(component[i]));
        file_units::writeLine(unit, line);
    }
}

} // namespace

void writePoints(const std::vector<std::span<const double>>& coordinates, std::int32_t points,
                 int unit) {
    constexpr std::size_t width = number_formats::wideRealWidth;
    file_units::writeLine(unit, "POINTS " + count(points) + " double");
    if (coordinates.empty()) return;
    std::string line(coordinates.size() * (width + 1) - 1, ' ');
    for (std::size_t i = 0; i < static_cast<std::size_t>(points); ++i) {
        for (std::size_t axis = 0; axis < coordinates.size(); ++axis)
            number_formats::writeWideReal(coordinates[axis].empty() ? 0 : coordinates[axis][i],
                                          line.data() + axis * (width + 1));
        file_units::writeLine(unit, line);
    }
}

std::string narrowReal(double value) {
    const std::string text = number_formats::generalField(value, narrowWidth, narrowDigits);
    const bool exponent = text.back() >= '0' && text.back() <= '9';
    return exponent && text[text.size() - 4] != 'E' ? std::string(narrowWidth, '*') : text;
}

std::string count(std::int64_t value) {
    return number_formats::integerField(value, number_formats::integerWidth);
}

void write_paraview_darray(std::span<double> values, const Extent& extent, std::string_view label,
                           std::int32_t dataIndex, int unit) {
    writeLabel(label, extent.count, dataIndex, unit);
    file_units::writeLine(unit, "LOOKUP_TABLE default");
    if (extent.truncated) return;
    for (double& value : values)
        if (std::fabs(value) < leastShown) value = 0;
    writeScalars(std::span<const double>(values), unit);
}

void write_paraview_array(std::span<const float> values, const Extent& extent,
                          std::string_view label, std::int32_t dataIndex, int unit) {
    writeLabel(label, extent.count, dataIndex, unit);
    file_units::writeLine(unit, "LOOKUP_TABLE default");
    if (!extent.truncated) writeScalars(values, unit);
}

void write_paraview_vector_array(std::span<const float> vx, std::span<const float> vy,
                                 std::span<const float> vz, const Extent& extent,
                                 std::string_view label, std::int32_t dataIndex, int unit) {
    writeVectors<float, 3>({vx, vy, vz}, extent, label, dataIndex, unit);
}

void write_paraview_vector_darray(std::span<const double> vx, std::span<const double> vy,
                                  std::span<const double> vz, const Extent& extent,
                                  std::string_view label, std::int32_t dataIndex, int unit) {
    writeVectors<double, 3>({vx, vy, vz}, extent, label, dataIndex, unit);
}

void write_paraview_vector_2d_array(std::span<const float> vx, std::span<const float> vy,
                                    const Extent& extent, std::string_view label,
                                    std::int32_t dataIndex, int unit) {
    writeVectors<float, 2>({vx, vy}, extent, label, dataIndex, unit);
}

void write_paraview_vector_2d_darray(std::span<const double> vx, std::span<const double> vy,
                                     const Extent& extent, std::string_view label,
                                     std::int32_t dataIndex, int unit) {
    writeVectors<double, 2>({vx, vy}, extent, label, dataIndex, unit);
}

} // namespace paraview
