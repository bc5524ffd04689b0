#include "meshrake/model/run_state.hpp"

namespace model {

RunState run;

} // namespace model
