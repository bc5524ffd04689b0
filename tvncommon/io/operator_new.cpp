#include "tvncommon/diagnostics/error.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cstdlib>
#include <cxxabi.h>
#include <exception>
#include <new>
#include <typeinfo>
#include <unistd.h>

// Replaces `operator new` of a program that links this file, so that memory comes from
// `system_calls::table.allocate`. The programs of this project link it. The library does not: its
// other users keep their own. The forms of `operator new` for arrays and those that do not throw
// call the one below. No type of the programs has an alignment greater than that of `std::malloc`.

namespace {

// Ends the process after an exception that nothing catches. It was thrown before `main` or in a
// function that must not throw. If there was no memory for a `std::bad_alloc`, there is no current
// exception.
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
