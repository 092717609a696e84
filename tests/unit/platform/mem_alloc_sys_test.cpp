// Unit tests of the tracked allocator.
#include "mem_alloc_sys.h"

#include "failing_heap.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace {

void* no_memory(std::size_t)
{
    return nullptr;
}

void* allocate(std::size_t size, const char* source)
{
    return MEM_MANAGER::new_wrapper(size, MEM_TRACKER(__FILE__, __LINE__), source);
}

}  // namespace

TEST(TrackedMemory, IsZeroFilledAndAligned)
{
    for (const std::size_t size : {std::size_t{1}, std::size_t{24}, std::size_t{4096}}) {
        auto* block = static_cast<unsigned char*>(allocate(size, "test"));
        ASSERT_NE(nullptr, block);
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t));
        for (std::size_t i = 0; i < size; ++i) {
            EXPECT_EQ(0, block[i]);
        }
        std::memset(block, 0xa5, size);
        MEM_MANAGER::delete_wrapper(block, "test");
    }
}

TEST(TrackedMemory, BooksBlocksAndBytesOnTheNamedAccount)
{
    const std::size_t all_blocks = MEM_MANAGER::get_live_blocks(nullptr);
    const std::size_t all_bytes = MEM_MANAGER::get_live_bytes(nullptr);
    void* first = allocate(10, "books_a");
    void* second = allocate(20, "books_a");
    void* third = allocate(40, "books_b");
    EXPECT_EQ(2U, MEM_MANAGER::get_live_blocks("books_a"));
    EXPECT_EQ(30U, MEM_MANAGER::get_live_bytes("books_a"));
    EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("books_b"));
    EXPECT_EQ(40U, MEM_MANAGER::get_live_bytes("books_b"));
    EXPECT_EQ(all_blocks + 3, MEM_MANAGER::get_live_blocks(nullptr));
    EXPECT_EQ(all_bytes + 70, MEM_MANAGER::get_live_bytes(nullptr));
    MEM_MANAGER::delete_wrapper(first, "books_a");
    MEM_MANAGER::delete_wrapper(second, "books_a");
    MEM_MANAGER::delete_wrapper(third, "books_b");
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("books_a"));
    EXPECT_EQ(0U, MEM_MANAGER::get_live_bytes("books_a"));
    EXPECT_EQ(all_blocks, MEM_MANAGER::get_live_blocks(nullptr));
    EXPECT_EQ(all_bytes, MEM_MANAGER::get_live_bytes(nullptr));
}

TEST(TrackedMemory, LeavesTheAccountThatItWasBookedOn)
{
    void* other = allocate(8, "released_under");
    void* block = allocate(8, "booked_under");
    MEM_MANAGER::delete_wrapper(block, "released_under");
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("booked_under"));
    EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("released_under"));
    MEM_MANAGER::delete_wrapper(other, nullptr);
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("released_under"));
}

TEST(TrackedMemory, CopiesTheSourceName)
{
    char name[] = "short_lived";
    void* block = allocate(8, name);
    name[0] = 'X';
    EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("short_lived"));
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("Xhort_lived"));
    MEM_MANAGER::delete_wrapper(block, nullptr);
}

TEST(TrackedMemory, BooksANullSourceOnTheAllocatorsOwnAccount)
{
    const std::size_t blocks = MEM_MANAGER::get_live_blocks("mem_alloc_sys");
    void* block = allocate(8, nullptr);
    EXPECT_EQ(blocks + 1, MEM_MANAGER::get_live_blocks("mem_alloc_sys"));
    MEM_MANAGER::delete_wrapper(block, nullptr);
    EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks("mem_alloc_sys"));
}

TEST(TrackedMemory, GivesABlockOfNoBytes)
{
    void* block = allocate(0, "nothing");
    EXPECT_NE(nullptr, block);
    EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("nothing"));
    EXPECT_EQ(0U, MEM_MANAGER::get_live_bytes("nothing"));
    MEM_MANAGER::delete_wrapper(block, "nothing");
}

TEST(TrackedMemory, IgnoresTheReleaseOfNothing)
{
    const std::size_t blocks = MEM_MANAGER::get_live_blocks(nullptr);
    MEM_MANAGER::delete_wrapper(nullptr, "pll");
    EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks(nullptr));
}

TEST(TrackedMemory, KnowsNothingOfANameThatNeverAllocated)
{
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("never"));
    EXPECT_EQ(0U, MEM_MANAGER::get_live_bytes("never"));
}

TEST(TrackedMemory, OpensItsAccountsOncePerName)
{
    const MEM_INITIALIZER again;
    void* block = allocate(8, "pll");
    const MEM_INITIALIZER and_again;
    EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("pll"));
    MEM_MANAGER::delete_wrapper(block, "pll");
}

TEST(HostileTrackedMemory, RefusesSizesThatOverflow)
{
    const std::size_t largest = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(nullptr, allocate(largest, "too_much"));
    EXPECT_EQ(nullptr, allocate(largest / 2, "too_much"));
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("too_much"));
}

TEST(Heap, OfTheHostServesEveryBlock)
{
    FAILING_HEAP heap;
    heap.fail_at(2);
    void* first = allocate(8, "test");
    void* second = allocate(8, "test");
    void* third = allocate(8, "test");
    EXPECT_NE(nullptr, first);
    EXPECT_EQ(nullptr, second);
    EXPECT_NE(nullptr, third);
    EXPECT_EQ(3, heap.get_allocations());
    EXPECT_EQ(1, heap.get_failures());
    EXPECT_EQ(2U, MEM_MANAGER::get_live_blocks("test"));
    MEM_MANAGER::delete_wrapper(first, "test");
    MEM_MANAGER::delete_wrapper(third, "test");
}

TEST(Heap, IsNotExchangedWhileABlockIsLive)
{
    void* block = allocate(8, "test");
    EXPECT_FALSE(MEM_MANAGER::set_heap(no_memory, std::free));
    void* another = allocate(8, "test");
    EXPECT_NE(nullptr, another);
    MEM_MANAGER::delete_wrapper(block, "test");
    MEM_MANAGER::delete_wrapper(another, "test");
}

TEST(Heap, NeedsBothOperations)
{
    EXPECT_FALSE(MEM_MANAGER::set_heap(no_memory, nullptr));
    EXPECT_FALSE(MEM_MANAGER::set_heap(nullptr, std::free));
    void* block = allocate(8, "test");
    EXPECT_NE(nullptr, block);
    MEM_MANAGER::delete_wrapper(block, "test");
}

TEST(Heap, RemembersThatMemoryWasExhausted)
{
    FAILING_HEAP heap;
    MEM_MANAGER::forget_exhaustion();
    MEM_MANAGER::delete_wrapper(allocate(8, "test"), "test");
    EXPECT_FALSE(MEM_MANAGER::was_exhausted());
    heap.fail_at(1);
    EXPECT_EQ(nullptr, allocate(8, "test"));
    EXPECT_TRUE(MEM_MANAGER::was_exhausted());
    MEM_MANAGER::delete_wrapper(allocate(8, "test"), "test");
    EXPECT_TRUE(MEM_MANAGER::was_exhausted()) << "until the host asks to forget it";
    MEM_MANAGER::forget_exhaustion();
    EXPECT_FALSE(MEM_MANAGER::was_exhausted());

    EXPECT_EQ(nullptr, allocate(std::numeric_limits<std::size_t>::max(), "test"));
    EXPECT_TRUE(MEM_MANAGER::was_exhausted()) << "asked for too much";
    MEM_MANAGER::forget_exhaustion();
    MEM_MANAGER::report_exhaustion();
    EXPECT_TRUE(MEM_MANAGER::was_exhausted());
    MEM_MANAGER::forget_exhaustion();
}

TEST(Adapter, CarriesItsSourceToTheAccount)
{
    const std::size_t own = MEM_MANAGER::get_live_blocks("mem_alloc_sys");
    {
        MEM_VECTOR<int> named{MEM_ALLOCATOR<int>("adapter")};
        named.push_back(1);
        EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("adapter"));
        EXPECT_EQ(sizeof(int), MEM_MANAGER::get_live_bytes("adapter"));
        const MEM_VECTOR<int> copy(named);
        EXPECT_EQ(2U, MEM_MANAGER::get_live_blocks("adapter"));
        const MEM_VECTOR<int> unnamed(3, 7);
        EXPECT_EQ(own + 1, MEM_MANAGER::get_live_blocks("mem_alloc_sys"));
    }
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks("adapter"));
    EXPECT_EQ(own, MEM_MANAGER::get_live_blocks("mem_alloc_sys"));
}

TEST(Adapter, CarriesItsSourceToOtherTypes)
{
    const MEM_ALLOCATOR<char> letters("rebound");
    const MEM_ALLOCATOR<int> numbers(letters);
    EXPECT_STREQ("rebound", numbers.get_source());
    EXPECT_TRUE(letters == numbers);
    EXPECT_STREQ("mem_alloc_sys", MEM_ALLOCATOR<int>().get_source());
}

TEST(Adapter, ThrowsWhenMemoryIsExhausted)
{
    FAILING_HEAP heap;
    heap.fail_at(1);
    MEM_VECTOR<int> values;
    EXPECT_THROW(values.push_back(1), std::bad_alloc);
    EXPECT_TRUE(values.empty());
}

TEST(HostileAdapter, RefusesCountsThatOverflow)
{
    MEM_ALLOCATOR<int> allocator;
    EXPECT_THROW(allocator.allocate(std::numeric_limits<std::size_t>::max() / 2), std::bad_alloc);
    EXPECT_THROW(allocator.allocate(std::numeric_limits<std::size_t>::max() / sizeof(int)),
                 std::bad_alloc);
}

TEST(Adapter, HoldsText)
{
    const MEM_STRING text("a text that is too long for the string's own room",
                          MEM_ALLOCATOR<char>("text"));
    EXPECT_EQ(1U, MEM_MANAGER::get_live_blocks("text"));
    EXPECT_STREQ("a text that is too long for the string's own room", text.c_str());
}
