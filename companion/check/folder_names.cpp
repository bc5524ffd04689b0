#include "companion/check/folder_names.hpp"

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace check {

namespace fs = std::filesystem;

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code failure;
    for (auto entry = fs::directory_iterator(folder, failure);
         !failure && entry != fs::directory_iterator(); entry.increment(failure))
        names.push_back(entry->path().filename().string());
    if (failure && failure != std::errc::no_such_file_or_directory &&
        failure != std::errc::not_a_directory)
        throw std::runtime_error(folder + ": it cannot be listed: " + failure.message());
    return names;
}

} // namespace check
