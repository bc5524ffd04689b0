#pragma once

// The statuses in tecio.h that are not those of the I/O layer.
namespace tecio {

inline constexpr int invalidCall = 1;
inline constexpr int damagedDataSet = 2;
inline constexpr int damagedSidecar = 3;
inline constexpr int otherVariables = 4;
inline constexpr int otherMesh = 5;
inline constexpr int notDurable = 6;

} // namespace tecio
