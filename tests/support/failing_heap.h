// A heap that runs out of memory on demand.
#pragma once

// While it lives, the library takes its memory from a heap whose allocations can be made to fail.
// It may only be made and end while the library holds no block (no PLL lives, for one).
//
//   FAILING_HEAP heap;
//   heap.fail_at(3);                  // the third allocation from now gives null, once
//   EXPECT_FALSE(operation());
//   heap.fail_none();
class FAILING_HEAP
{
public:
    FAILING_HEAP();
    ~FAILING_HEAP();
    FAILING_HEAP(const FAILING_HEAP&) = delete;
    FAILING_HEAP& operator=(const FAILING_HEAP&) = delete;

    // The nth allocation from now on fails, from 1; the later ones succeed again.
    void fail_at(long nth);

    // The nth and all later ones fail.
    void fail_from(long nth);
    void fail_none();

    // Failures since the last of the calls above; 0 tells a loop over n that it is done.
    long get_failures() const;

    // Allocations since then, the failed ones included.
    long get_allocations() const;
};
