#include "database/files/read_budget.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace pll_internal {

namespace {

bool is_within(long long taken, long long limit)
{
    return limit <= 0 || taken <= limit;
}

// Sums stay where they are legal: a host's limit may be the largest number.
long long add(long long sum, long long amount)
{
    return sum > std::numeric_limits<long long>::max() - amount
               ? std::numeric_limits<long long>::max()
               : sum + amount;
}

bool is_below(const char* directory, const char* file)
{
    const std::size_t length = std::strlen(directory);
    return std::strncmp(file, directory, length) == 0 &&
           (file[length] == '/' || directory[length - 1] == '/');
}

}  // namespace

PLL_READ_BUDGET::PLL_READ_BUDGET(const PLL_READ_LIMITS& limits, const char* directory)
    : m_limits(limits), m_directory(directory)
{
}

bool PLL_READ_BUDGET::take_bytes(long long bytes)
{
    m_bytes = add(m_bytes, bytes);
    return is_within(m_bytes, m_limits.m_bytes);
}

bool PLL_READ_BUDGET::take_statement()
{
    m_statements = add(m_statements, 1);
    return is_within(m_statements, m_limits.m_statements);
}

bool PLL_READ_BUDGET::take_groups(long long groups)
{
    m_groups = add(m_groups, groups);
    return is_within(m_groups, m_limits.m_table_groups);
}

// The names are resolved on the stack: a reading takes no memory that is not on its account.
PLL_FINDING PLL_READ_BUDGET::judge_place(const char* file, bool is_heard) const
{
    if (m_directory == nullptr || (!is_heard && !m_limits.m_is_confined)) {
        return PLL_FINDING::NONE;
    }
    char directory[PATH_MAX];
    char place[PATH_MAX];
    const char* const name = *m_directory == '\0' ? "/" : m_directory;
    if (realpath(name, directory) == nullptr || realpath(file, place) == nullptr ||
        is_below(directory, place)) {
        return PLL_FINDING::NONE;
    }
    return m_limits.m_is_confined ? PLL_FINDING::FILE_REFUSED : PLL_FINDING::FILE_OUTSIDE;
}

PLL_FAULT fault_of_system(PLL_FINDING finding, int error)
{
    PLL_FAULT fault;
    fault.m_finding = finding;
    fault.m_system_error = error;
    return fault;
}

PLL_FAULT fault_of_reading(int error, const PLL_READ_BUDGET& budget)
{
    if (error != PLL_OVER_BUDGET) {
        return fault_of_system(PLL_FINDING::READ_FAILED, error);
    }
    PLL_FAULT fault;
    fault.m_finding = PLL_FINDING::TOO_MANY_BYTES;
    fault.m_limit = budget.limits().m_bytes;
    return fault;
}

}  // namespace pll_internal
