#include "app/source/hash_set.h"

#include <utility>

std::uint64_t mix_hash(std::uint64_t hash, std::uint64_t value)
{
    constexpr std::uint64_t FACTOR = 0x9E3779B97F4A7C15;
    constexpr int HALF = 32;
    hash = (hash ^ value) * FACTOR;
    return hash ^ (hash >> HALF);
}

bool HASH_SET::place(std::uint64_t hash)
{
    std::size_t at = hash & (m_slots.size() - 1);
    while (m_slots[at] != 0 && m_slots[at] != hash) {
        at = (at + 1) & (m_slots.size() - 1);
    }
    const bool is_new = m_slots[at] == 0;
    m_slots[at] = hash;
    return is_new;
}

bool HASH_SET::insert(std::uint64_t hash)
{
    constexpr std::size_t FIRST_SIZE = 64;
    if (3 * m_count >= 2 * m_slots.size()) {
        std::vector<std::uint64_t> old(m_slots.empty() ? FIRST_SIZE : 2 * m_slots.size());
        std::swap(old, m_slots);
        for (const std::uint64_t known : old) {
            if (known != 0) {
                place(known);
            }
        }
    }
    const bool is_new = place(hash == 0 ? 1 : hash);
    m_count += is_new ? 1 : 0;
    return is_new;
}
