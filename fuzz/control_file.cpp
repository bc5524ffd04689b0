#include "fuzz/support.hpp"

// A whole run with the input as the control file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Files problem = fuzz::problem();
    fuzz::Files files = problem;
    files["t.plot.control"] = std::string(reinterpret_cast<const char*>(data), size);
    fuzz::run(files);
    return 0;
}
