#pragma once

// One whole run: the sequence from banner to exit. Returns the process status, 0 after a normal
// exit and 1 after an error. Several runs may follow one another in a process.
int meshrake_main(int argc, const char* const* argv);
