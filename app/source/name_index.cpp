#include "app/source/name_index.h"

#include <utility>

std::string_view NAME_KEEPER::keep(std::string_view text)
{
    constexpr std::size_t BLOCK = 65536;
    if (m_blocks.empty() || m_blocks.back().capacity() - m_blocks.back().size() < text.size()) {
        m_blocks.emplace_back();
        m_blocks.back().reserve(text.size() > BLOCK ? text.size() : BLOCK);
    }
    std::string& block = m_blocks.back();
    const std::size_t start = block.size();
    block.append(text);
    return std::string_view(block).substr(start);
}

std::uint32_t NAME_INDEX::hash_of(std::uint32_t owner, std::string_view name)
{
    constexpr std::uint32_t FACTOR = 16777619;  // of FNV
    constexpr std::uint32_t START = 2166136261;
    constexpr std::uint32_t MIX = 2654435769;
    constexpr int HALF = 15;
    std::uint32_t hash = START ^ (owner * MIX);
    for (const char c : name) {
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        hash = (hash ^ static_cast<unsigned char>(lower)) * FACTOR;
    }
    return (hash ^ (hash >> HALF)) * MIX;
}

void NAME_INDEX::grow()
{
    constexpr std::size_t FIRST_SIZE = 64;
    if (3 * m_count < 2 * m_slots.size()) {
        return;
    }
    std::vector<SLOT> old(m_slots.empty() ? FIRST_SIZE : 2 * m_slots.size());
    std::swap(old, m_slots);
    for (const SLOT& slot : old) {
        std::size_t at = slot.m_hash & (m_slots.size() - 1);
        while (slot.m_record != NO_RECORD && m_slots[at].m_record != NO_RECORD) {
            at = (at + 1) & (m_slots.size() - 1);
        }
        if (slot.m_record != NO_RECORD) {
            m_slots[at] = slot;
        }
    }
}
