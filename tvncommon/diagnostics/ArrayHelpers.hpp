#pragma once

#include <cstdint>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <vector>

// Arrays whose size is stated or grows by a fixed rule. An allocation that fails ends the run with
// the allocation banner under `name`; a default name tells the operation and the type. A negative
// size counts as 0.
namespace ArrayHelpers {

// Gives the array exactly this size. An array that has it already keeps its contents, any other
// starts anew; `fill`, when given, goes into all entries in either case.
template<class T>
void allocate(std::int64_t size, std::vector<T>& array,
              const std::type_identity_t<std::optional<T>>& fill = {}, std::string_view name = {});

// Changes the size and keeps the entries that fit. Only new entries take `fill`.
template<class T>
void resize(std::int64_t size, std::vector<T>& array,
            const std::type_identity_t<std::optional<T>>& fill = {}, std::string_view name = {});

// Puts a value behind the first `count` entries and raises `count`. The array's size is its
// capacity; a full array grows by half: 1, 2, 3, 5, 8, 12, 18, ...
template<class T>
void pushback(std::type_identity_t<T> value, std::int32_t& count, std::vector<T>& array,
              std::string_view name = {});

// The three above exist for std::int32_t, float, double and std::string.

// Ends the run because the memory for the array called `name` is not there.
void allocationFailed(std::string_view name);

// Makes an array of `count` zeros or default records out of any array, in its old memory where that
// is large enough; where it is not, the old memory goes back before the new is asked for.
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
