#include "meshrake/memory.hpp"

#include <cstdlib>
#include <malloc.h>
#include <new>
#include <sys/mman.h>

namespace {

constexpr std::size_t largePage = 2097152;

// Large arrays begin at a large page. The advice may be refused: the pages are then small ones.
void* allocateLarge(std::size_t size) {
    const std::size_t pages = (size + largePage - 1) / largePage;
    void* memory = std::aligned_alloc(largePage, pages * largePage);
    if (memory) madvise(memory, pages * largePage, MADV_HUGEPAGE);
    return memory;
}

} // namespace

void prepareMemory() {
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, 2147483647);
}

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
