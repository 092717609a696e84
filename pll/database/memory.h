// Tracked memory of the device database. Everything is booked on "pll_manager"; nothing throws, a
// null pointer or false says that memory is exhausted.
#pragma once

#include "mem_alloc_sys.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

namespace pll_internal {

inline constexpr char PLL_MANAGER_SOURCE[] = "pll_manager";

// A zero-filled block of the database's account.
inline void* manager_allocate(std::size_t size)
{
    return MEM_MANAGER::new_wrapper(size, MEM_TRACKER(__FILE__, __LINE__), PLL_MANAGER_SOURCE);
}

inline void manager_release(const void* block)
{
    MEM_MANAGER::delete_wrapper(const_cast<void*>(block), PLL_MANAGER_SOURCE);
}

// A new object, destroyed with `manager_destroy`. Its constructor must not throw.
template <class T, class... ARGUMENTS>
T* manager_create(ARGUMENTS&&... arguments)
{
    void* block = manager_allocate(sizeof(T));
    return block == nullptr ? nullptr : new (block) T(std::forward<ARGUMENTS>(arguments)...);
}

template <class T>
void manager_destroy(T* object)
{
    if (object != nullptr) {
        object->~T();
        manager_release(object);
    }
}

// A new text of the three, one after the other; null for a null first one.
inline char* manager_join(const char* first, const char* second = "", const char* third = "")
{
    if (first == nullptr) {
        return nullptr;
    }
    const std::size_t first_length = std::strlen(first);
    const std::size_t second_length = std::strlen(second);
    const std::size_t third_length = std::strlen(third);
    char* text =
        static_cast<char*>(manager_allocate(first_length + second_length + third_length + 1));
    if (text != nullptr) {
        std::memcpy(text, first, first_length);
        std::memcpy(text + first_length, second, second_length);
        std::memcpy(text + first_length + second_length, third, third_length + 1);
    }
    return text;
}

// Owns a text while a function runs.
class PLL_MANAGER_TEXT
{
public:
    explicit PLL_MANAGER_TEXT(char* text) : m_text(text) {}
    ~PLL_MANAGER_TEXT() { manager_release(m_text); }
    PLL_MANAGER_TEXT(const PLL_MANAGER_TEXT&) = delete;
    PLL_MANAGER_TEXT& operator=(const PLL_MANAGER_TEXT&) = delete;

    const char* get() const { return m_text; }

private:
    char* m_text;
};

// Moves an array of `count` elements into one with room for `room`.
template <class T>
bool manager_move_array(T** array, int count, int room)
{
    T* larger = static_cast<T*>(manager_allocate(sizeof(T) * static_cast<std::size_t>(room)));
    if (larger == nullptr) {
        return false;
    }
    if (count > 0) {
        std::memcpy(larger, *array, sizeof(T) * static_cast<std::size_t>(count));
    }
    manager_release(*array);
    *array = larger;
    return true;
}

// Appends to an array that only this function has filled: its room is the power of two that is not
// below its count, so it is full exactly when the count is one.
template <class T>
bool manager_append(T** array, int* count, T value)
{
    const bool full = (*count & (*count - 1)) == 0;
    if (full && !manager_move_array(array, *count, *count == 0 ? 1 : 2 * *count)) {
        return false;
    }
    (*array)[*count] = value;
    ++*count;
    return true;
}

}  // namespace pll_internal
