#include "database/name_index.h"

namespace pll_internal {

namespace {

const std::uint64_t FEWEST_SLOTS = 16;

}  // namespace

PLL_NAME_INDEX::~PLL_NAME_INDEX()
{
    manager_release(m_slots);
}

bool PLL_NAME_INDEX::add(std::uint64_t hash, int place)
{
    const std::uint64_t taken = static_cast<std::uint64_t>(m_count) + 1;
    if ((m_slots == nullptr || 2 * taken > m_mask + 1) && !grow()) {
        return false;
    }
    insert({hash, place + 1});
    ++m_count;
    return true;
}

// Twice the slots. A cluster may wrap around the end, so the walk over the old slots starts after a
// free one: entries of one hash then keep their order.
bool PLL_NAME_INDEX::grow()
{
    SLOT* const old_slots = m_slots;
    const std::uint64_t old_mask = m_mask;
    const std::uint64_t number_of_slots = old_slots == nullptr ? FEWEST_SLOTS : 2 * (old_mask + 1);
    SLOT* const slots = static_cast<SLOT*>(manager_allocate(number_of_slots * sizeof(SLOT)));
    if (slots == nullptr) {
        return false;
    }
    m_slots = slots;
    m_mask = number_of_slots - 1;
    if (old_slots == nullptr) {
        return true;
    }
    std::uint64_t start = 0;
    while (old_slots[start].m_place_plus_1 != 0) {
        ++start;
    }
    for (std::uint64_t i = 0; i <= old_mask; ++i) {
        const SLOT& slot = old_slots[(start + i) & old_mask];
        if (slot.m_place_plus_1 != 0) {
            insert(slot);
        }
    }
    manager_release(old_slots);
    return true;
}

void PLL_NAME_INDEX::insert(const SLOT& slot)
{
    std::uint64_t i = slot.m_hash & m_mask;
    while (m_slots[i].m_place_plus_1 != 0) {
        i = (i + 1) & m_mask;
    }
    m_slots[i] = slot;
}

}  // namespace pll_internal
