#pragma once

#include <string_view>

namespace version {

inline constexpr std::string_view revision = "2918";
inline constexpr std::string_view buildDate = "2026-02-03";
inline constexpr std::string_view buildInfo = "64-bit";

} // namespace version
