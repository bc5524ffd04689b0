#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cstdlib>
#include <cxxabi.h>
#include <exception>
#include <new>
#include <typeinfo>
#include <unistd.h>

// Replaces `operator new` of a program that links this file, which the programs of this project do
// and the library does not: other users of the library keep their own. Memory then comes from
// `system_calls::table.allocate`. The forms of `operator new` for arrays and those that do not
// throw call the one below. No type of the programs has an alignment greater than that of
// `std::malloc`.

namespace {

// For an exception that nothing catches: one thrown before `main` or in a function that must not
// throw, or `std::bad_alloc` without memory for the exception itself, which is no current exception
// then.
[[noreturn]] void endProcess() noexcept {
    const std::type_info* thrown = abi::__cxa_current_exception_type();
    const bool memory = !thrown || *thrown == typeid(std::bad_alloc);
    error::writeLastBanner(memory);
    ::_exit(1);
}

// Runs before all constructors without a priority.
[[gnu::constructor(101)]] void setTerminate() {
    std::set_terminate(endProcess);
}

} // namespace

void* operator new(std::size_t size) {
    void* memory = system_calls::table.allocate(size);
    if (!memory) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
