#include "failing_heap.h"

#include "mem_alloc_sys.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

namespace {

constexpr long NEVER = std::numeric_limits<long>::max();

long allocations = 0;
long failures = 0;
long first_failure = NEVER;
long last_failure = NEVER;

void set_plan(long first, long last)
{
    allocations = 0;
    failures = 0;
    first_failure = first;
    last_failure = last;
}

void* allocate(std::size_t size)
{
    ++allocations;
    if (first_failure <= allocations && allocations <= last_failure) {
        ++failures;
        return nullptr;
    }
    return std::malloc(size);
}

void release(void* pointer)
{
    std::free(pointer);
}

}  // namespace

FAILING_HEAP::FAILING_HEAP()
{
    set_plan(NEVER, NEVER);
    EXPECT_TRUE(MEM_MANAGER::set_heap(allocate, release)) << "the library still holds memory";
}

FAILING_HEAP::~FAILING_HEAP()
{
    set_plan(NEVER, NEVER);
    EXPECT_TRUE(MEM_MANAGER::set_heap(nullptr, nullptr)) << "the library still holds memory";
}

void FAILING_HEAP::fail_at(long nth)
{
    set_plan(nth, nth);
}

void FAILING_HEAP::fail_from(long nth)
{
    set_plan(nth, NEVER);
}

void FAILING_HEAP::fail_none()
{
    set_plan(NEVER, NEVER);
}

long FAILING_HEAP::get_failures() const
{
    return failures;
}

long FAILING_HEAP::get_allocations() const
{
    return allocations;
}
