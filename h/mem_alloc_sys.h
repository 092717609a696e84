// The library's one source of heap memory, with an account per source name.
//
// Every block is booked on the account of the name it was asked under ("pll", "pll_info",
// "pll_manager", ...) and leaves the account it was booked on, whoever releases it. Hosts read the
// accounts to see that nothing is left behind. Single-threaded, like the whole library.
#pragma once

#include "pll_export.h"

#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

// Where an allocation was asked for. The file name is borrowed and may be null.
class PLL_API MEM_TRACKER
{
public:
    explicit MEM_TRACKER(const char* file = nullptr, int line = 0) : m_file(file), m_line(line) {}

    const char* m_file;
    int m_line;  // 0: unknown
};

// The heap and its accounts. Everything is static: there is one heap to a process, and one thread
// that uses it.
//
// A host that looks for leaks compares the accounts before and after; one that must not use the
// heap of C, or wants to see what happens when there is none left, brings its own by set_heap.
class PLL_API MEM_MANAGER
{
public:
    // A heap in the place of malloc and free; `allocate` returns null when it has no memory.
    typedef void* (*ALLOCATE)(std::size_t size);
    typedef void (*RELEASE)(void* pointer);

    // A block of `size` bytes (0 is legal), aligned for every scalar type and filled with zeros,
    // booked on the account `source`; a null source is booked on "mem_alloc_sys". Null when memory
    // is exhausted. The caller owns the block and gives it back with `delete_wrapper`.
    static void* new_wrapper(std::size_t size, const MEM_TRACKER& tracker, const char* source);

    // Releases a block of `new_wrapper`; a null pointer is ignored. The account that loses the
    // block is the one it was booked on, whatever `source` says.
    static void delete_wrapper(void* pointer, const char* source);

    // Live blocks and bytes attributed to a source name; a null name gives the totals, a name that
    // never allocated gives 0.
    static std::size_t get_live_blocks(const char* source);
    static std::size_t get_live_bytes(const char* source);

    // True when memory was exhausted since the process started, or since the call below: an
    // operation of the library asked for memory in vain, whatever it answered. Operations that
    // have no other way to say so, such as adding an entry to a list, leave their object as it was;
    // a host that must know asks here after a series of them. Answers that were given meanwhile may
    // be those of an object that lacks an entry.
    static bool was_exhausted();
    static void forget_exhaustion();

    // Says that memory was exhausted that came from elsewhere than `new_wrapper`.
    static void report_exhaustion();

    // Takes memory from the host's heap from now on; two null pointers restore malloc and free.
    // Legal only while no block is live. Returns false, with nothing changed, otherwise or when
    // just one of the two is null.
    static bool set_heap(ALLOCATE allocate, RELEASE release);
};

// Sets the accounts of a library up; one object per library, before its first allocation. An
// account that exists cannot fail for want of memory later, so the library's own are opened when it
// is loaded.
class PLL_API MEM_INITIALIZER
{
public:
    MEM_INITIALIZER();
};

// The standard containers' way to the tracked heap. `source` is borrowed and must outlive the
// container; texts with static storage are meant. Throws std::bad_alloc when memory is exhausted.
template <class T>
class MEM_ALLOCATOR
{
public:
    using value_type = T;
    using is_always_equal = std::true_type;
    using propagate_on_container_move_assignment = std::true_type;
    using propagate_on_container_swap = std::true_type;

    MEM_ALLOCATOR() noexcept : m_source("mem_alloc_sys") {}
    explicit MEM_ALLOCATOR(const char* source) noexcept : m_source(source) {}
    template <class U>
    MEM_ALLOCATOR(const MEM_ALLOCATOR<U>& other)
    noexcept  // NOLINT(google-explicit-constructor)
        : m_source(other.get_source())
    {
    }

    // Room for `count` objects, zeroed and not constructed. A size that no address can hold is
    // refused like one that there is no memory for.
    T* allocate(std::size_t count)
    {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            MEM_MANAGER::report_exhaustion();
            throw std::bad_alloc();
        }
        void* block = MEM_MANAGER::new_wrapper(count * sizeof(T), MEM_TRACKER(), m_source);
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(block);
    }

    // Gives a block back to the heap, whatever account it is on.
    void deallocate(T* block, std::size_t) noexcept
    {
        MEM_MANAGER::delete_wrapper(block, m_source);
    }

    // The account that containers of this allocator are booked on; copies of a container share it.
    const char* get_source() const noexcept { return m_source; }

private:
    const char* m_source;
};

// All blocks come from one heap, so any allocator can release what another one gave.
template <class T, class U>
bool operator==(const MEM_ALLOCATOR<T>&, const MEM_ALLOCATOR<U>&) noexcept
{
    return true;
}

// The containers of the interface.
template <class T>
using MEM_VECTOR = std::vector<T, MEM_ALLOCATOR<T>>;
using MEM_STRING = std::basic_string<char, std::char_traits<char>, MEM_ALLOCATOR<char>>;
