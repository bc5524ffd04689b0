#pragma once

// The statuses in tecio.h that are not those of the I/O layer.
namespace tecio {

inline constexpr int refused = 1;
inline constexpr int damagedData = 2;
inline constexpr int damagedSidecar = 3;
inline constexpr int otherVariables = 4;
inline constexpr int otherZones = 5;
inline constexpr int notDurable = 6;

} // namespace tecio
