// Finds records by owner and name, the names in any case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::uint32_t NO_RECORD = std::numeric_limits<std::uint32_t>::max();

// Texts that live as long as their keeper.
class NAME_KEEPER
{
public:
    std::string_view keep(std::string_view text);

private:
    std::deque<std::string> m_blocks;
};

// A hash table of record numbers with open addressing. The records themselves stand elsewhere.
class NAME_INDEX
{
public:
    // The number of the record that `owner` and `name` have, or `next`, which is then theirs.
    // `is_it` (a record number) tells whether a record has them.
    template <class IS_IT>
    std::uint32_t find_or_add(std::uint32_t owner, std::string_view name, std::uint32_t next,
                              const IS_IT& is_it)
    {
        grow();
        const std::uint32_t hash = hash_of(owner, name);
        std::size_t at = hash & (m_slots.size() - 1);
        while (m_slots[at].m_record != NO_RECORD) {
            if (m_slots[at].m_hash == hash && is_it(m_slots[at].m_record)) {
                return m_slots[at].m_record;
            }
            at = (at + 1) & (m_slots.size() - 1);
        }
        m_slots[at] = {hash, next};
        ++m_count;
        return next;
    }

    // Likewise without adding: NO_RECORD when no record has them.
    template <class IS_IT>
    std::uint32_t find(std::uint32_t owner, std::string_view name, const IS_IT& is_it) const
    {
        const std::uint32_t hash = hash_of(owner, name);
        std::size_t at = hash & (m_slots.size() - 1);
        while (!m_slots.empty() && m_slots[at].m_record != NO_RECORD) {
            if (m_slots[at].m_hash == hash && is_it(m_slots[at].m_record)) {
                return m_slots[at].m_record;
            }
            at = (at + 1) & (m_slots.size() - 1);
        }
        return NO_RECORD;
    }

private:
    struct SLOT
    {
        std::uint32_t m_hash = 0;
        std::uint32_t m_record = NO_RECORD;
    };

    static std::uint32_t hash_of(std::uint32_t owner, std::string_view name);

    // Leaves a third of the slots free, at least.
    void grow();

    std::vector<SLOT> m_slots;  // a power of two of them
    std::size_t m_count = 0;
};
