#include "meshrake/meshrake.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/system_calls.hpp"

// The program with legacy VTK files, which no instruction requests.
int main(int argc, char** argv) {
    if (!system_calls::prepareProcess()) {
        error::writeLastBanner(true);
        return 1;
    }
    return meshrake_main(argc, argv, true);
}
