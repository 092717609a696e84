#include "app/output/out_of_memory.h"

#include "mem_alloc_sys.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <unistd.h>

namespace {

constexpr int IO_FAILED = 4;  // the exit status

void* allocate_or_end(std::size_t size)
{
    void* const block = std::malloc(size);
    if (block == nullptr) {
        end_without_memory();
    }
    return block;
}

// An exception that finds no memory for itself ends the program without one.
void terminate()
{
    if (std::current_exception() == nullptr) {
        end_without_memory();
    }
    std::abort();
}

// Objects of other files, those of libraries in headers among them, take memory before main is
// entered; this one is made before them.
struct EARLY
{
    EARLY() { end_when_memory_is_exhausted(); }
};

__attribute__((init_priority(101))) const EARLY EARLY_GUARD;

}  // namespace

void end_without_memory()
{
    const char TEXT[] = "pllcalc: out of memory\n";
    // Nothing could be done where this cannot be written either.
    const ssize_t ignored = write(STDERR_FILENO, TEXT, std::strlen(TEXT));
    static_cast<void>(ignored);
    _exit(IO_FAILED);
}

void end_when_memory_is_exhausted()
{
    std::set_new_handler(end_without_memory);
    std::set_terminate(terminate);
    MEM_MANAGER::set_heap(allocate_or_end, std::free);
}
