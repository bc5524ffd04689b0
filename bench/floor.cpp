// Does the least that any program must do to make plot files of result files, with plain reads and
// writes: reads every input once into a reused mebibyte, and writes as many bytes as the outputs
// have from memory.
//
//     floor OUTPUT_FOLDER LIST
//
// LIST is a file with a line for each file: "read NAME" or "write BYTES NAME". The files of "write"
// are created in OUTPUT_FOLDER, under their last name. The status is 1 if an operation fails.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t blockBytes = 1048576;

[[noreturn]] void fail(const std::string& name) {
    std::perror(name.c_str());
    std::exit(1);
}

void readWhole(const std::string& name, std::vector<char>& block) {
    const int file = open(name.c_str(), O_RDONLY);
    if (file < 0) fail(name);
    ssize_t n = 0;
    while ((n = read(file, block.data(), block.size())) > 0) {
    }
    if (n < 0 || close(file) != 0) fail(name);
}

void writeWhole(const std::string& name, std::size_t bytes, const std::vector<char>& block) {
    const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (file < 0) fail(name);
    while (bytes > 0) {
        const ssize_t n = write(file, block.data(), std::min(bytes, block.size()));
        if (n <= 0) fail(name);
        bytes -= static_cast<std::size_t>(n);
    }
    if (close(file) != 0) fail(name);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: floor OUTPUT_FOLDER LIST\n");
        return 2;
    }
    std::vector<char> block(blockBytes, '1');
    std::ifstream list(argv[2]);
    if (!list) fail(argv[2]);
    for (std::string line; std::getline(list, line);) {
        std::istringstream words(line);
        std::string what, name;
        std::size_t bytes = 0;
        words >> what;
        if (what == "write") words >> bytes;
        std::getline(words >> std::ws, name); // a name may have blanks
        if (what == "read")
            readWhole(name, block);
        else
            writeWhole(argv[1] + name.substr(name.rfind('/')), bytes, block);
    }
    return 0;
}
