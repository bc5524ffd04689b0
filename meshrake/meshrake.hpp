#pragma once

// Does one run. Returns the process status: 0 after a normal exit, 1 after an error. With
// `legacyVtk` it also writes legacy VTK files of the domains and of the locations of boundary
// conditions, which no instruction requests. A process may do several runs, one after the other.
int meshrake_main(int argc, const char* const* argv, bool legacyVtk = false);
