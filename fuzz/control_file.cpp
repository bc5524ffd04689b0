#include "fuzz/support.hpp"

// A whole run with the input as the control file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Files problem = fuzz::problem();
    const std::string text(reinterpret_cast<const char*>(data), size);
    fuzz::run(problem, {{"t.plot.control", text}});
    return 0;
}
