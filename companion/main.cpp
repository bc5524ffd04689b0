#include "companion/meshrake_tool.hpp"

#include "companion/screen/screen.hpp"
#include "tvncommon/io/system_calls.hpp"

int main(int argc, char** argv) {
    if (!system_calls::prepareProcess()) {
        screen::writeError("meshrake-tool: not enough memory");
        return 1;
    }
    return meshrakeTool(argc, argv);
}
