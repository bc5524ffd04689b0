#include "meshrake/run/reset.hpp"

#include "meshrake/model/run_state.hpp"
#include "meshrake/model/stages.hpp"
#include "tecio/own_functions.hpp"
#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/diagnostics/warning_messages.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/units/units.hpp"

namespace run {

void resetAll() {
    model::run = {};
    stages::reset();
    if constexpr (MESHRAKE_OWN_TECIO) tecio::reset();
    io_layer::reset();
    error::reset();
    units::reset();
    warning_messages::reset();
}

} // namespace run
