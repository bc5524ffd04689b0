#include "meshrake/observation_compare/observation_files.hpp"

#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/observation_compare/shape_cache.hpp"
#include "tvncommon/diagnostics/ArrayHelpers.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/free_form.hpp"

#include <string>

namespace observation_compare {

using model::Domain;
using model::run;

namespace {

// Each observation begins a line, of at least one character and a line end.
constexpr std::int64_t minimumLineBytes = 2;

void readItems(int unit, std::span<const free_form::Item> items) {
    const auto nextLine = [unit](std::string& line) { return file_units::readLine(unit, line); };
    error::checkFileRead(free_form::readItems(nextLine, items, free_form::MissingValue::refused),
                         io_layer::pathOf(unit));
}

void allocateSet(std::int32_t count, const std::string& name) {
    model::ObservationSet& set = run.observations;
    set = {};
    set.obsCount = count;
    for (auto* values : {&set.obsX, &set.obsY, &set.obsZ, &set.obsValue})
        ArrayHelpers::allocateArray(*values, count, name);
    ArrayHelpers::allocateArray(set.obsShape, std::int64_t{8} * count, name);
    ArrayHelpers::allocateArray(set.obsElement, count, name);
}

// Reads <prefix>.<table>. `arrays` names the observations in the out-of-memory banner. In space an
// observation has x, y, z and a value, in plan it has no z.
void locate(const Domain& domain) {
    const bool isPm = domain.tag == model::tags::pm;
    if (isPm && run.meshNodesPerElement == 8) obs_points_shape(domain);
}

} // namespace

void readObservations(const std::string& table, const std::string& arrays, bool inSpace) {
    const std::string name = model::fileName(run.problemPrefix + "." + table);
    const int unit = file_units::openTextRead(name);
    std::int32_t count = 0;
    readItems(unit, std::array<free_form::Item, 1>{&count});
    // The last line may have no line end.
    if (count < 0 || count > (io_layer::bytesLeft(unit) + 1) / minimumLineBytes)
        file_units::badContents(unit, "The number of observations, " + std::to_string(count) +
                                          ", does not fit the size of the file");
    allocateSet(count, "observation data for " + arrays);
    model::ObservationSet& set = run.observations;
    for (std::size_t i = 0; i < set.obsX.size(); ++i) {
        const std::array<free_form::Item, 4> items{&set.obsX[i], &set.obsY[i],
                                                   inSpace ? &set.obsZ[i] : &set.obsValue[i],
                                                   &set.obsValue[i]};
        readItems(unit, std::span(items).first(inSpace ? 4 : 3));
    }
    file_units::freeUnit(unit);
}

void read_obs_heads_xyz(const Domain& domain) {
    if (domain.tag != model::tags::pm) error::input_error("Porous medium domain expected.");
    readObservations("observed_heads", "observed heads", true);
    locate(domain);
}

void read_obs_heads_xy(const Domain& domain) {
    const std::string table =
        domain.tag == model::tags::pm ? "observed_heads" : "observed_heads_olf";
    readObservations(table, table, false);
    locate(domain);
}

void read_d2gwt_heads(const Domain& domain) {
    readObservations("observed_d2gwt", "observed_d2gwt", false);
    locate(domain);
}

} // namespace observation_compare
