#include "meshrake/meshrake.hpp"

#include "tvncommon/system_calls.hpp"

int main(int argc, char** argv) {
    system_calls::prepareProcess();
    return meshrake_main(argc, argv, true);
}
