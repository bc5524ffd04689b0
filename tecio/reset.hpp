#pragma once

namespace tecio {

// Closes data sets that an earlier run left open, without finishing them, and forgets all settings.
// Another library with the functions of tecio.h lacks this one.
void reset();

} // namespace tecio
