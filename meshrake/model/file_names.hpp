#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Names of the files of a problem.
namespace model {

// The text without its trailing blanks.
std::string fileName(std::string_view text);

// "<prefix>o.<rest>" without trailing blanks.
std::string problemFile(std::string_view rest);

// The time index in a file name: the last `suffixDigits` of ten digits with leading zeros. An index
// with more digits loses its leading ones.
std::string outputTimeIndex(std::int32_t index);

} // namespace model
