#include "tvncommon/diagnostics/ArrayHelpers.hpp"

#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace ArrayHelpers {

namespace {

template<class T>
constexpr std::string_view typeName;
template<>
constexpr std::string_view typeName<std::int32_t> = "integer(4) array";
template<>
constexpr std::string_view typeName<float> = "real(4) array";
template<>
constexpr std::string_view typeName<double> = "real(8) array";
template<>
constexpr std::string_view typeName<std::string> = "character string array";

template<class T>
void fail(std::string_view operation, std::string_view name) {
    allocationFailed(name.empty() ? std::string(operation) + ": " + std::string(typeName<T>)
                                  : std::string(name));
}

template<class T>
void changeSize(std::size_t size, std::vector<T>& array, const T& fill, std::string_view operation,
                std::string_view name) {
    try {
        array.reserve(size); // exactly this size: resize alone may allocate more
        array.resize(size, fill);
    } catch (const std::bad_alloc&) {
        fail<T>(operation, name);
    } catch (const std::length_error&) {
        fail<T>(operation, name);
    }
}

std::size_t sizeOf(std::int64_t size) {
    return size < 0 ? 0 : static_cast<std::size_t>(size);
}

} // namespace

void allocationFailed(std::string_view name) {
    error::check_alloc(io_layer::outOfMemory, name);
}

template<class T>
void allocate(std::int64_t size, std::vector<T>& array,
              const std::type_identity_t<std::optional<T>>& fill, std::string_view name) {
    if (array.size() != sizeOf(size)) {
        std::vector<T>().swap(array);
        changeSize(sizeOf(size), array, fill.value_or(T()), "allocateArray", name);
    } else if (fill) {
        std::fill(array.begin(), array.end(), *fill);
    }
}

template<class T>
void resize(std::int64_t size, std::vector<T>& array,
            const std::type_identity_t<std::optional<T>>& fill, std::string_view name) {
    changeSize(sizeOf(size), array, fill.value_or(T()), "resizeArray", name);
}

template<class T>
void pushback(std::type_identity_t<T> value, std::int32_t& count, std::vector<T>& array,
              std::string_view name) {
    if (array.empty()) count = 0;
    if (sizeOf(count) >= array.size())
        changeSize(static_cast<std::size_t>(std::max(1.0, std::ceil(1.5 * count))), array, T(),
                   "pushback", name);
    array[sizeOf(count)] = std::move(value);
    ++count;
}

template void allocate<std::int32_t>(std::int64_t, std::vector<std::int32_t>&,
                                     const std::optional<std::int32_t>&, std::string_view);
template void resize<std::int32_t>(std::int64_t, std::vector<std::int32_t>&,
                                   const std::optional<std::int32_t>&, std::string_view);
template void pushback<std::int32_t>(std::int32_t, std::int32_t&, std::vector<std::int32_t>&,
                                     std::string_view);
template void allocate<float>(std::int64_t, std::vector<float>&, const std::optional<float>&,
                              std::string_view);
template void resize<float>(std::int64_t, std::vector<float>&, const std::optional<float>&,
                            std::string_view);
template void pushback<float>(float, std::int32_t&, std::vector<float>&, std::string_view);
template void allocate<double>(std::int64_t, std::vector<double>&, const std::optional<double>&,
                               std::string_view);
template void resize<double>(std::int64_t, std::vector<double>&, const std::optional<double>&,
                             std::string_view);
template void pushback<double>(double, std::int32_t&, std::vector<double>&, std::string_view);
template void allocate<std::string>(std::int64_t, std::vector<std::string>&,
                                    const std::optional<std::string>&, std::string_view);
template void resize<std::string>(std::int64_t, std::vector<std::string>&,
                                  const std::optional<std::string>&, std::string_view);
template void pushback<std::string>(std::string, std::int32_t&, std::vector<std::string>&,
                                    std::string_view);

} // namespace ArrayHelpers
