#include "meshrake/meshrake.hpp"

#include "tvncommon/system_calls.hpp"

int main(int argc, char** argv) {
    system_calls::ignoreWriteSignals();
    return meshrake_main(argc, argv);
}
