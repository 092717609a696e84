// How long a piece of work takes, what it executes and what it takes from the heap.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

// Processor time of one call of `work`, in s: the best of several batches, so that other load on
// the machine counts as little as possible. Takes about 30 ms, or four calls where those are
// longer.
double best_seconds(const std::function<void()>& work);

// Processor time of this one call, in s.
double seconds_once(const std::function<void()>& work);

// Instructions of one call of `work`, outside the kernel, the average of 20; negative where the
// machine does not count them.
double count_instructions(const std::function<void()>& work);

// The library's heap with a meter. It may only be made and end while the library holds no block.
class METERED_HEAP
{
public:
    METERED_HEAP();
    ~METERED_HEAP();
    METERED_HEAP(const METERED_HEAP&) = delete;
    METERED_HEAP& operator=(const METERED_HEAP&) = delete;

    // Forgets what was allocated so far.
    void reset();

    // Since then: blocks asked for, and the most bytes that were live above those at the reset.
    std::size_t get_allocations() const;
    std::size_t get_peak_bytes() const;
};
