#pragma once

namespace model {

// Each function reads one file of the problem description into `run`. A short or damaged file ends
// the run.

// <prefix>o.gen, which must exist: version of the pre-processor, title, unit system. Another
// version than that of this program is a warning. Shows the title on the screen.
void titleRead();

// <prefix>o.species, optional: names and kinds of the solutes. Shows on the screen whether the file
// exists.
void speciesRead();

// <prefix>o.hmc, optional: names of the mixing fractions. Shows on the screen whether it exists.
void hmcFractionsRead();

} // namespace model
