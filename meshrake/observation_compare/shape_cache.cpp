#include "meshrake/observation_compare/shape_cache.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/output_lines.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/observation_compare/element_search.hpp"
#include "meshrake/plot_data/text_block.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"
#include "tvncommon/text/number_formats.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>

namespace observation_compare {

using model::Domain;
using model::run;

namespace {

constexpr std::size_t elementWidth = 10;
constexpr std::size_t shapeWidth = 18;
constexpr int shapeDigits = 11;
constexpr std::size_t shapeBegin = elementWidth + 2;
constexpr std::size_t shapeStep = 1 + shapeWidth;
constexpr std::size_t lineWidth = shapeBegin + 8 * shapeStep - 1;
// A value without an exponent ends with four blanks instead, which an editor may remove.
constexpr std::size_t trimmedWidth = lineWidth - 4;

// Returns the word of a field. Empty if the field has several words or a character with a special
// meaning in free form.
std::string_view singleWord(std::string_view field) {
    const std::string_view word = StringHelpers::trimLeft(StringHelpers::trimRight(field));
    return word.find_first_of(" \t,/*") == std::string_view::npos ? word : std::string_view();
}

// The sum of a point's shape values is 1, that of the eight entries of -1 is -8. A file that is cut
// before its last exponent looks like one without trailing blanks, but its sum is another.
bool addUp(std::span<const double> shape) {
    constexpr double tolerance = 1.0e-6;
    const double sum = std::accumulate(shape.begin(), shape.end(), 0.0);
    return std::fabs(sum - (sum > 0 ? 1 : -8)) < tolerance;
}

int readCacheLine(int unit, std::int32_t& element, std::span<double> shape) {
    std::string text;
    const std::int64_t begin = io_layer::bytesLeft(unit);
    const int status = io_layer::readLine(unit, text, io_layer::LongLine::cut);
    if (status != io_layer::ok) return status;
    const bool isShort = text.size() < lineWidth;
    if (isShort && StringHelpers::trimRight(text).size() != trimmedWidth)
        return io_layer::readFailed;
    const auto length = static_cast<std::int64_t>(text.size());
    const bool hasEnd = begin - io_layer::bytesLeft(unit) > length;
    text.resize(std::max(text.size(), lineWidth), ' ');
    const std::string_view line = text;
    bool good = free_form::readInteger(singleWord(line.substr(0, elementWidth)), element) == 0;
    for (std::size_t k = 0; k < shape.size(); ++k) {
        const std::string_view field = line.substr(shapeBegin + k * shapeStep, shapeWidth);
        good = free_form::readReal(singleWord(field), shape[k]) == 0 && good;
    }
    if (good && isShort && !hasEnd && !addUp(shape)) return io_layer::readFailed;
    return good ? io_layer::ok : io_layer::invalidCharacter;
}

void readCache(const std::string& name) {
    model::ObservationSet& set = run.observations;
    const int unit = file_units::openTextRead(name);
    for (std::size_t i = 0; i < set.obsElement.size(); ++i)
        error::checkFileRead(
            readCacheLine(unit, set.obsElement[i], std::span(set.obsShape).subspan(8 * i, 8)),
            name);
    file_units::freeUnit(unit);
}

void writeCacheLine(int unit, std::int32_t element, const Shape& shape) {
    std::string line = number_formats::integerField(element, elementWidth) + ' ';
    for (const double value : shape)
        line += ' ' + number_formats::generalField(value, shapeWidth, shapeDigits);
    file_units::writeLine(unit, line);
}

void searchElements(ElementSearch& search, int unit) {
    model::ObservationSet& set = run.observations;
    // One write for many lines of progress, but often enough to show the progress.
    constexpr std::size_t linesAtOnce = 200;
    plot_data::TextBlock progress = plot_data::beginBlock(io_layer::screen);
    const std::string of = " of " + std::to_string(set.obsCount) + " observation points";
    for (std::size_t i = 0; i < set.obsX.size(); ++i) {
        appendLine(progress, " " + std::to_string(i + 1) + of);
        if (i % linesAtOnce == 0) writeBlock(progress);
        const std::int32_t element =
            containingElement(search, {set.obsX[i], set.obsY[i], set.obsZ[i]});
        Shape shape;
        shape.fill(-1);
        if (element > 0) {
            br8shp(0, search.rst, shape);
            std::copy(shape.begin(), shape.end(),
                      set.obsShape.begin() + static_cast<std::ptrdiff_t>(8 * i));
            set.obsElement[i] = element;
        }
        writeCacheLine(unit, element > 0 ? element : -1, shape);
    }
    writeBlock(progress);
}

} // namespace

void obs_points_shape(const Domain& domain) {
    const std::string name = model::problemFile("ObsShape.txt");
    if (file_units::exists(name)) return readCache(name);
    model::writeScreen("Evaluating shape functions at XYZ observation locations");
    model::writeScreen("This might take several minutes...");
    model::writeEcho(" Evaluating shape functions at XYZ observation locations");
    ElementSearch search;
    prepare(search, domain);
    const int unit = file_units::openTextForCommit(name);
    searchElements(search, unit);
    file_units::commitUnit(unit);
}

} // namespace observation_compare
