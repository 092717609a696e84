// The tracked allocator. A header in front of every block holds its size and its account, so that a
// block leaves the account it was booked on. The accounts are a list that only grows: source names
// are few, and the account of a name must stay where the headers of its blocks point.
#include "mem_alloc_sys.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr const char* DEFAULT_SOURCE = "mem_alloc_sys";

struct ACCOUNT
{
    ACCOUNT* m_next;
    std::size_t m_blocks;
    std::size_t m_bytes;
    char* m_name;  // lies behind the account
};

// The header keeps the alignment of the block behind it.
struct alignas(std::max_align_t) BLOCK_HEADER
{
    ACCOUNT* m_account;
    std::size_t m_size;
};

// No object may be larger; some heaps end the process instead of refusing such a size.
constexpr std::size_t LARGEST_BLOCK =
    static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) - sizeof(BLOCK_HEADER);

MEM_MANAGER::ALLOCATE heap_allocate = std::malloc;
MEM_MANAGER::RELEASE heap_release = std::free;

bool is_exhausted = false;  // since the host last asked to forget it

void* refuse()
{
    is_exhausted = true;
    return nullptr;
}

// Blocks of every account, and those whose account could not be opened.
ACCOUNT total = {nullptr, 0, 0, nullptr};
ACCOUNT* first_account = nullptr;

ACCOUNT* find_account(const char* source)
{
    for (ACCOUNT* account = first_account; account != nullptr; account = account->m_next) {
        if (std::strcmp(account->m_name, source) == 0) {
            return account;
        }
    }
    return nullptr;
}

// Accounts outlive any heap of the host, so they are never taken from it.
ACCOUNT* find_or_open_account(const char* source)
{
    ACCOUNT* account = find_account(source);
    if (account != nullptr) {
        return account;
    }
    const std::size_t name_size = std::strlen(source) + 1;
    void* memory = std::malloc(sizeof(ACCOUNT) + name_size);
    if (memory == nullptr) {
        return nullptr;
    }
    char* name = static_cast<char*>(memory) + sizeof(ACCOUNT);
    std::memcpy(name, source, name_size);
    account = new (memory) ACCOUNT{first_account, 0, 0, name};
    first_account = account;
    return account;
}

// Blocks and bytes, so that a leak of empty blocks shows too.
void book(ACCOUNT* account, std::size_t size)
{
    ++account->m_blocks;
    account->m_bytes += size;
}

void unbook(ACCOUNT* account, std::size_t size)
{
    --account->m_blocks;
    account->m_bytes -= size;
}

}  // namespace

void* MEM_MANAGER::new_wrapper(std::size_t size, const MEM_TRACKER&, const char* source)
{
    if (size > LARGEST_BLOCK) {
        return refuse();
    }
    ACCOUNT* account = find_or_open_account(source == nullptr ? DEFAULT_SOURCE : source);
    if (account == nullptr) {
        return refuse();
    }
    void* memory = heap_allocate(sizeof(BLOCK_HEADER) + size);
    if (memory == nullptr) {
        return refuse();
    }
    // Zeroed, so that no answer can depend on what the memory held before.
    auto* header = new (memory) BLOCK_HEADER{account, size};
    book(account, size);
    book(&total, size);
    void* block = header + 1;
    std::memset(block, 0, size);
    return block;
}

void MEM_MANAGER::delete_wrapper(void* pointer, const char*)
{
    if (pointer == nullptr) {
        return;
    }
    BLOCK_HEADER* header = static_cast<BLOCK_HEADER*>(pointer) - 1;
    unbook(header->m_account, header->m_size);
    unbook(&total, header->m_size);
    heap_release(header);
}

std::size_t MEM_MANAGER::get_live_blocks(const char* source)
{
    const ACCOUNT* account = source == nullptr ? &total : find_account(source);
    return account == nullptr ? 0 : account->m_blocks;
}

std::size_t MEM_MANAGER::get_live_bytes(const char* source)
{
    const ACCOUNT* account = source == nullptr ? &total : find_account(source);
    return account == nullptr ? 0 : account->m_bytes;
}

bool MEM_MANAGER::was_exhausted()
{
    return is_exhausted;
}

void MEM_MANAGER::forget_exhaustion()
{
    is_exhausted = false;
}

void MEM_MANAGER::report_exhaustion()
{
    is_exhausted = true;
}

bool MEM_MANAGER::set_heap(ALLOCATE allocate, RELEASE release)
{
    // A block must go back to the heap that it came from, so none may be out.
    if (total.m_blocks != 0 || (allocate == nullptr) != (release == nullptr)) {
        return false;
    }
    heap_allocate = allocate == nullptr ? std::malloc : allocate;
    heap_release = release == nullptr ? std::free : release;
    return true;
}

MEM_INITIALIZER::MEM_INITIALIZER()
{
    // The accounts of the library's own names, opened while memory is surely there.
    for (const char* source : {DEFAULT_SOURCE, "pll", "pll_info", "pll_manager"}) {
        find_or_open_account(source);
    }
}

namespace {

const MEM_INITIALIZER LIBRARY_ACCOUNTS;

}  // namespace
