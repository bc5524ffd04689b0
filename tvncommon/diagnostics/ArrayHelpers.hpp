#pragma once

#include <cstdint>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <vector>

// Allocation of arrays of a given size, and of arrays that grow by a fixed rule. A failed
// allocation ends the run with the allocation banner, which shows `name` or, by default, the
// operation and the type. A negative size counts as 0.
namespace ArrayHelpers {

// Gives the array exactly this size. An array of this size keeps its contents; any other is
// allocated again with entries of 0. `fill`, if given, is stored in all entries in both cases.
template<class T>
void allocate(std::int64_t size, std::vector<T>& array,
              const std::type_identity_t<std::optional<T>>& fill = {}, std::string_view name = {});

// Changes the size and keeps the entries that fit. Only new entries are set to `fill`.
template<class T>
void resize(std::int64_t size, std::vector<T>& array,
            const std::type_identity_t<std::optional<T>>& fill = {}, std::string_view name = {});

// Stores a value after the first `count` entries and increments `count`. The size of the array is
// its capacity; a full array grows by half: 1, 2, 3, 5, 8, 12, 18, ...
template<class T>
void pushback(std::type_identity_t<T> value, std::int32_t& count, std::vector<T>& array,
              std::string_view name = {});

// These three exist for std::int32_t, float, double and std::string.

// Ends the run with the allocation banner for the array called `name`.
void allocationFailed(std::string_view name);

// Gives the array `count` entries, all zeros or default records. Its memory is reused if it is
// large enough, otherwise freed before the new memory is allocated.
template<class T>
void allocateArray(std::vector<T>& array, std::int64_t count, std::string_view name) {
    const std::size_t size = count < 0 ? 0 : static_cast<std::size_t>(count);
    try {
        if (array.capacity() < size) std::vector<T>().swap(array);
        array.clear();
        array.resize(size);
    } catch (const std::bad_alloc&) {
        allocationFailed(name);
    } catch (const std::length_error&) {
        allocationFailed(name);
    }
}

} // namespace ArrayHelpers
