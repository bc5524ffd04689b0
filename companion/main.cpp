#include "companion/meshrake_tool.hpp"

#include "companion/screen/screen.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <csignal>

int main(int argc, char** argv) {
    if (!system_calls::prepareProcess()) {
        screen::writeError("meshrake-tool: not enough memory");
        return 1;
    }
    // A pipe whose reader has ended, such as `head`, ends the program without a message.
    std::signal(SIGPIPE, SIG_DFL);
    return meshrakeTool(argc, argv);
}
