// One number over everything that the library answers, for comparing builds and hosts.
#pragma once

#include "random_request.h"

#include <cstdint>
#include <string>

// Takes in numbers by their bits and texts by their bytes (FNV-1a, 64 bits). All NaNs are one: no
// rule fixes their payload.
class HASH
{
public:
    void add(double value);
    void add(std::int64_t value);
    void add(const std::string& text);
    std::uint64_t get() const { return m_hash; }

private:
    void add_byte(unsigned char byte);

    static constexpr std::uint64_t OFFSET_BASIS = 0xcbf29ce484222325U;
    std::uint64_t m_hash = OFFSET_BASIS;
};

// How a host has set the floating-point unit up when it calls.
struct HOST_SETUP
{
    int m_rounding;  // as of std::fesetround
    bool m_flushes_denormals;
    bool m_traps;
};

// Lives while the host is set up so; given back at its end.
class HOST_SETTING
{
public:
    explicit HOST_SETTING(const HOST_SETUP& setup);
    ~HOST_SETTING();
    HOST_SETTING(const HOST_SETTING&) = delete;
    HOST_SETTING& operator=(const HOST_SETTING&) = delete;

private:
    void* m_environment;
};

// What the library says to one request: the synthesis with its reports, what it achieves, what can
// be asked of it, and for some requests the list of ratios.
void hash_answer(const RANDOM_CASE& random_case, const HOST_SETUP& setup, HASH* hash);

// What it reads of a database, and a synthesis for every family, type and part of it. Returns how
// many there are; 0 when the database cannot be read.
int hash_database(const std::string& path, const HOST_SETUP& setup, HASH* hash);
