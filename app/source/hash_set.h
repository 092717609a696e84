// A set of hashes in little memory: open addressing in an array of a power of two.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class HASH_SET
{
public:
    // False when the hash is known.
    bool insert(std::uint64_t hash);

private:
    bool place(std::uint64_t hash);

    std::vector<std::uint64_t> m_slots;  // 0: free
    std::size_t m_count = 0;
};

// Adds a value to a hash.
std::uint64_t mix_hash(std::uint64_t hash, std::uint64_t value);
