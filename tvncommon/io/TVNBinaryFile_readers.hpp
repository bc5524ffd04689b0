#pragma once

#include <cstdint>
#include <string>

// Further readers of result files, for other programs. `header`, if given, receives the 80
// characters of the header. A file that cannot be read or is damaged ends the run with a banner
// that names it.
namespace TVNBinaryFile {

// Read two, three or six components into arrays of `n` values each.
void read_r4_vec2(const std::string& filename, std::int32_t n, float* a1, float* a2,
                  std::string* header = nullptr);
void read_r8_vec2(const std::string& filename, std::int32_t n, double* a1, double* a2,
                  std::string* header = nullptr);
void read_r4_vec3(const std::string& filename, std::int32_t n, float* a1, float* a2, float* a3,
                  std::string* header = nullptr);
void read_r8_vec3(const std::string& filename, std::int32_t n, double* a1, double* a2, double* a3,
                  std::string* header = nullptr);
void read_r4_tensor(const std::string& filename, std::int32_t n, float* a1, float* a2, float* a3,
                    float* a4, float* a5, float* a6, std::string* header = nullptr);
void read_r8_tensor(const std::string& filename, std::int32_t n, double* a1, double* a2, double* a3,
                    double* a4, double* a5, double* a6, std::string* header = nullptr);

// Read `columns` components into one array: `n` values of the first, then those of the next.
void read_r4_2d(const std::string& filename, std::int32_t n, std::int32_t columns, float* array,
                std::string* header = nullptr);
void read_r8_2d(const std::string& filename, std::int32_t n, std::int32_t columns, double* array,
                std::string* header = nullptr);

// Read one component of exactly `n` values. A file with another number of values ends the run.
void read_safe_i4_1d(const std::string& filename, std::int32_t n, std::int32_t* array,
                     std::string* header = nullptr);
void read_safe_r4_1d(const std::string& filename, std::int32_t n, float* array,
                     std::string* header = nullptr);
void read_safe_r8_1d(const std::string& filename, std::int32_t n, double* array,
                     std::string* header = nullptr);

// Return the number of values in the first component.
std::int32_t numVals_i4_1d(const std::string& filename);
std::int32_t numVals_r4_1d(const std::string& filename);
std::int32_t numVals_r8_1d(const std::string& filename);

} // namespace TVNBinaryFile
