// Finds an entry of a growing list by its name.
//
// Families, parts and speed grades are looked up by name for nearly every statement of a family
// file; a walk along the list would make reading quadratic. The index maps the hash of a name to
// the places in the list that have it; the list itself stays in creation order and knows nothing of
// it.
#pragma once

#include "database/memory.h"

#include <cstdint>

namespace pll_internal {

// Hash of a name, the letters A to Z taken as a to z; `tag` tells lists with a second key apart. A
// null name counts as an empty one.
inline std::uint64_t hash_name(const char* name, int tag = 0)
{
    const std::uint64_t PRIME = 0x100000001b3U;
    std::uint64_t hash = 0xcbf29ce484222325U ^ static_cast<std::uint32_t>(tag);
    for (const char* c = name == nullptr ? "" : name; *c != '\0'; ++c) {
        const unsigned char letter = static_cast<unsigned char>(*c);
        const bool is_upper = letter >= 'A' && letter <= 'Z';
        hash = (hash ^ (is_upper ? letter + ('a' - 'A') : letter)) * PRIME;
    }
    return hash ^ (hash >> 32);
}

class PLL_NAME_INDEX
{
public:
    PLL_NAME_INDEX() : m_room(0), m_count(0), m_mask(0), m_slots(nullptr) {}
    ~PLL_NAME_INDEX();
    PLL_NAME_INDEX(const PLL_NAME_INDEX&) = delete;
    PLL_NAME_INDEX& operator=(const PLL_NAME_INDEX&) = delete;

    int get_count() const { return m_count; }

    // Adds a place of the list; false when memory is exhausted.
    bool add(std::uint64_t hash, int place);

    // The first place added under `hash` for which `is_equal(place)` holds, -1 when there is none.
    template <class IS_EQUAL>
    int find(std::uint64_t hash, IS_EQUAL is_equal) const
    {
        if (m_count == 0) {
            return -1;
        }
        for (std::uint64_t i = hash & m_mask; m_slots[i].m_place_plus_1 != 0;
             i = (i + 1) & m_mask) {
            const int place = m_slots[i].m_place_plus_1 - 1;
            if (m_slots[i].m_hash == hash && is_equal(place)) {
                return place;
            }
        }
        return -1;
    }

    int m_room;  // entries that the list has memory for, kept here for its owner

private:
    struct SLOT
    {
        std::uint64_t m_hash;
        int m_place_plus_1;  // 0: the slot is free
    };

    bool grow();
    void insert(const SLOT& slot);

    int m_count;
    std::uint64_t
        m_mask;  // number of slots - 1; slots are a power of two, at most half of them taken
    SLOT* m_slots;
};

// Brings the index up to date with a list that grew without it; false when memory is exhausted.
template <class HASH_OF>
bool index_the_rest(PLL_NAME_INDEX* index, int count, HASH_OF hash_of)
{
    for (int i = index->get_count(); i < count; ++i) {
        if (!index->add(hash_of(i), i)) {
            return false;
        }
    }
    return true;
}

// Makes room for one more entry in an indexed list.
template <class T>
bool make_room_for_one(T** list, int count, PLL_NAME_INDEX* index)
{
    const int SMALLEST_ROOM = 8;
    if (count < index->m_room) {
        return true;
    }
    const int room = count < SMALLEST_ROOM ? SMALLEST_ROOM : 2 * count;
    if (!manager_move_array(list, count, room)) {
        return false;
    }
    index->m_room = room;
    return true;
}

}  // namespace pll_internal
