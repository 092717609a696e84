#include "stopwatch.h"

#include "mem_alloc_sys.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <linux/perf_event.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr double NANOSECONDS_PER_SECOND = 1e9;
constexpr double BATCH_SECONDS = 0.003;
constexpr int BATCHES = 10;
constexpr double LONG_CALL_SECONDS = 0.05;
constexpr int LONG_CALLS = 3;
constexpr int COUNTED_CALLS = 20;

double processor_seconds()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / NANOSECONDS_PER_SECOND;
}

double seconds_of(const std::function<void()>& work, int calls)
{
    const double begin = processor_seconds();
    for (int i = 0; i < calls; ++i) {
        work();
    }
    return (processor_seconds() - begin) / calls;
}

// A counter of this thread; -1 where the machine has none.
int open_instruction_counter()
{
    perf_event_attr wish = {};
    wish.type = PERF_TYPE_HARDWARE;
    wish.size = sizeof(wish);
    wish.config = PERF_COUNT_HW_INSTRUCTIONS;
    wish.disabled = 1;
    wish.exclude_kernel = 1;
    wish.exclude_hv = 1;
    return int(syscall(SYS_perf_event_open, &wish, 0, -1, -1, 0));
}

// ---- The meter: all blocks carry their size in front.

struct alignas(std::max_align_t) BLOCK_SIZE
{
    std::size_t m_size;
};

std::size_t allocations = 0;
std::size_t live_bytes = 0;
std::size_t bytes_at_reset = 0;
std::size_t peak_bytes = 0;

void* metered_allocate(std::size_t size)
{
    void* memory = std::malloc(sizeof(BLOCK_SIZE) + size);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* block = new (memory) BLOCK_SIZE{size};
    ++allocations;
    live_bytes += size;
    peak_bytes = std::max(peak_bytes, live_bytes);
    return block + 1;
}

void metered_release(void* pointer)
{
    if (pointer != nullptr) {
        BLOCK_SIZE* block = static_cast<BLOCK_SIZE*>(pointer) - 1;
        live_bytes -= block->m_size;
        std::free(block);
    }
}

}  // namespace

double seconds_once(const std::function<void()>& work)
{
    return seconds_of(work, 1);
}

double best_seconds(const std::function<void()>& work)
{
    const double first = seconds_once(work);
    const bool is_long = first > LONG_CALL_SECONDS;
    const int calls = first < BATCH_SECONDS ? int(BATCH_SECONDS / std::max(first, 1e-7)) + 1 : 1;
    double best = first;
    for (int batch = 0; batch < (is_long ? LONG_CALLS : BATCHES); ++batch) {
        best = std::min(best, seconds_of(work, calls));
    }
    return best;
}

double count_instructions(const std::function<void()>& work)
{
    const int counter = open_instruction_counter();
    if (counter < 0) {
        return -1.0;
    }
    work();
    ioctl(counter, PERF_EVENT_IOC_ENABLE, 0);
    for (int i = 0; i < COUNTED_CALLS; ++i) {
        work();
    }
    ioctl(counter, PERF_EVENT_IOC_DISABLE, 0);
    std::uint64_t count = 0;
    const bool is_read = read(counter, &count, sizeof(count)) == ssize_t(sizeof(count));
    close(counter);
    return is_read ? double(count) / COUNTED_CALLS : -1.0;
}

METERED_HEAP::METERED_HEAP()
{
    if (!MEM_MANAGER::set_heap(metered_allocate, metered_release)) {
        std::abort();  // the library holds blocks: a mistake of the benchmark
    }
    reset();
}

METERED_HEAP::~METERED_HEAP()
{
    MEM_MANAGER::set_heap(nullptr, nullptr);
}

void METERED_HEAP::reset()
{
    allocations = 0;
    bytes_at_reset = live_bytes;
    peak_bytes = live_bytes;
}

std::size_t METERED_HEAP::get_allocations() const
{
    return allocations;
}

std::size_t METERED_HEAP::get_peak_bytes() const
{
    return peak_bytes - bytes_at_reset;
}
