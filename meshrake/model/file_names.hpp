#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Names of the files of a problem.
namespace model {

// Returns the text as a file name: without trailing blanks.
std::string fileName(std::string_view text);

// Returns the file name "<prefix>o.<rest>".
std::string problemFile(std::string_view rest);

// Returns the time index in a file name: the last `suffixDigits` of ten digits with leading zeros.
// An index with more digits loses its leading ones.
std::string outputTimeIndex(std::int32_t index);

} // namespace model
