#include "tools/page.hpp"

#include <cstdio>
#include <fstream>
#include <iterator>

namespace page {

namespace {

std::string tagList(model::DomainSet domains) {
    std::string list;
    for (const auto& [name, tag] : model::tags::names)
        if (domains & tag) list += (list.empty() ? "" : ", ") + std::string(name);
    return list;
}

bool isCurrent(const std::string& program, const std::string& path, const std::string& text) {
    std::ifstream file(path, std::ios::binary);
    const std::string found((std::istreambuf_iterator<char>(file)), {});
    if (found == text) return true;
    std::fprintf(stderr, "%s is not current; recreate it with: %s > %s\n", path.c_str(),
                 program.c_str(), path.c_str());
    return false;
}

} // namespace

std::string code(std::string_view text) {
    return text.empty() ? "" : "`" + std::string(text) + "`";
}

std::string domainList(model::DomainSet domains) {
    if (domains == model::tags::anyDomain) return "all";
    const model::DomainSet missing = model::tags::anyDomain & ~domains;
    const bool allButOne = (missing & (missing - 1)) == 0;
    return allButOne ? "all but " + tagList(missing) : tagList(domains);
}

int printOrCheck(int argc, char** argv, const std::string& text) {
    if (argc == 3 && std::string_view(argv[1]) == "--check")
        return isCurrent(argv[0], argv[2], text) ? 0 : 1;
    if (argc != 1) {
        std::fprintf(stderr, "usage: %s [--check FILE]\n", argv[0]);
        return 2;
    }
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
}

} // namespace page
