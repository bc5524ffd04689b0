#pragma once

#include "companion/check/work.hpp"

namespace check {

// Makes the plots of the surface that the control file requests, with a writer that writes nothing,
// and adds them to the report. They use the records of pm and olf for their own data sets, so that
// those of the domains must have been reported.
void measureSurfacePlots(Work& work);

} // namespace check
