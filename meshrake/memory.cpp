#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cstdlib>
#include <cxxabi.h>
#include <exception>
#include <new>
#include <typeinfo>
#include <unistd.h>

// The program's memory comes through the table of system calls. The forms of `operator new` for
// arrays and those that do not throw call the one below; no type of the program is aligned to more
// than `std::malloc` gives.

namespace {

// Where no exception can be caught: before `main`, in a function that must not throw, or when the
// exception itself finds no memory, which leaves none to be current.
[[noreturn]] void endProcess() noexcept {
    const std::type_info* thrown = abi::__cxa_current_exception_type();
    const bool memory = !thrown || *thrown == typeid(std::bad_alloc);
    error::writeLastBanner(memory);
    ::_exit(1);
}

// Ahead of all constructors without a priority.
[[gnu::constructor(101)]] void setEnd() {
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
