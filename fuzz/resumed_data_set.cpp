#include "fuzz/support.hpp"

#include <cstring>

// A run that resumes binary data sets, one file of which is edited; see `edit`. With the word
// "repaired" the size and checksum of an edited sidecar are recomputed.
namespace {

// The files after a run with two output times, when a third has been added.
fuzz::Files unfinished() {
    const fuzz::Files problem = fuzz::smallProblem(2);
    const std::string control = "tecplot binary mode\ntecplot binary append\nend\n"
                                "write pm domain file\nend\nwrite olf domain file\nend\n";
    fuzz::require(fuzz::run(problem, {{"t.plot.control", control}}) == 0, "the first run failed");
    fuzz::Files resumed = fuzz::files();
    resumed.merge(fuzz::smallProblem(3));
    return resumed;
}

// Sets the size of the file and the checksum, which is the FNV-1a hash of the bytes after it.
void repairSidecar(std::string& bytes) {
    constexpr std::size_t sizeAt = 8, checksumAt = 16, contentsAt = 24;
    if (bytes.size() < contentsAt) return;
    const std::uint64_t size = bytes.size();
    std::uint64_t checksum = 14695981039346656037U;
    for (const char c : bytes.substr(contentsAt))
        checksum = (checksum ^ static_cast<unsigned char>(c)) * 1099511628211U;
    std::memcpy(&bytes[sizeAt], &size, sizeof size);
    std::memcpy(&bytes[checksumAt], &checksum, sizeof checksum);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Files start = unfinished();
    fuzz::Files changed;
    const std::string word =
        fuzz::edit(start, {reinterpret_cast<const char*>(data), size}, changed);
    if (word.empty()) return 0;
    for (auto& [name, bytes] : changed)
        if (word == "repaired" && name.ends_with(".szhdr")) repairSidecar(bytes);
    fuzz::run(start, changed);
    return 0;
}
