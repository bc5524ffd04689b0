#include "meshrake/run/append_state.hpp"

#include "meshrake/model/run_state.hpp"
#include "tvncommon/error.hpp"
#include "tvncommon/file_units.hpp"
#include "tvncommon/io_layer.hpp"

namespace run_driver {

void writeTecplotAppend(std::int32_t index) {
    const std::string name = model::problemFile("tec_append");
    const int unit = file_units::getUnit();
    if (io_layer::openRecordsReplace(unit, name) == io_layer::ok)
        error::checkFileWrite(io_layer::writeRecord(unit, &index, sizeof index), name);
    file_units::freeUnit(unit);
}

} // namespace run_driver
