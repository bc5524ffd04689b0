#include "tvncommon/system_calls.hpp"

#include <cstdlib>
#include <new>

// The program's large arrays lie on large pages: a page fault for every 4096 bytes would cost more
// than reading the values into them.

using system_calls::largePage;

namespace {

void* allocateLarge(std::size_t size) {
    const std::size_t pages = (size + largePage - 1) / largePage;
    void* memory = std::aligned_alloc(largePage, pages * largePage);
    if (memory) system_calls::useLargePages(memory, pages * largePage);
    return memory;
}

} // namespace

void* operator new(std::size_t size) {
    void* memory = size >= largePage ? allocateLarge(size) : std::malloc(size > 0 ? size : 1);
    if (!memory) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
