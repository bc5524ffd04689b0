#pragma once

// One whole run: the sequence from banner to exit. Returns the process status, 0 after a normal
// exit and 1 after an error. `legacyVtk` also writes what no instruction asks for: the domains and
// the locations of boundary conditions as legacy VTK files. Several runs may follow one another in
// a process.
int meshrake_main(int argc, const char* const* argv, bool legacyVtk = false);
