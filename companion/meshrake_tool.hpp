#pragma once

// Reads the command line of meshrake-tool and runs the subcommand. Returns the process status: 0,
// 1 after a failure or with findings, 2 for a wrong command line.
int meshrakeTool(int argc, const char* const* argv);
