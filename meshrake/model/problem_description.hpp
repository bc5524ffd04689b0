#pragma once

namespace model {

// Each reads one file of the problem description into `run`; a short or damaged file ends the run.

// <prefix>o.gen, which must exist: version of the pre-processor (a difference is a warning), title,
// unit system. Shows the title on the screen.
void titleRead();

// <prefix>o.species, optional: names and kinds of the solutes.
void speciesRead();

// <prefix>o.hmc, optional: names of the mixing fractions.
void hmcFractionsRead();

} // namespace model
