#include "app/devices/read_faults.h"

#include "app/output/input_file.h"

#include <cerrno>
#include <exception>
#include <new>

namespace {

bool is_limit(PLL_FINDING finding)
{
    return finding == PLL_FINDING::TOO_MANY_BYTES || finding == PLL_FINDING::TOO_MANY_STATEMENTS;
}

}  // namespace

void READ_FAULTS::forget()
{
    m_finding = PLL_FINDING::NONE;
    m_is_out_of_memory = false;
    m_is_included = false;
    m_file.clear();
    m_system_error = 0;
}

void READ_FAULTS::on_finding(const PLL_READ_FINDING& finding)
{
    const bool is_left_out = finding.m_finding == PLL_FINDING::INCLUDE_NOT_OPENED &&
                             finding.m_system_error != 0 && finding.m_system_error != ENOENT;
    m_is_out_of_memory = m_is_out_of_memory || finding.m_finding == PLL_FINDING::OUT_OF_MEMORY;
    if (m_finding != PLL_FINDING::NONE || (!pll_is_read_error(finding.m_finding) && !is_left_out)) {
        return;
    }
    m_finding = finding.m_finding;
    m_system_error = finding.m_system_error;
    m_is_included = is_left_out ||
                    (finding.m_finding == PLL_FINDING::FILE_REFUSED && finding.m_place.m_line > 0);
    try {
        m_file = m_is_included ? finding.m_word : finding.m_place.m_file;
    } catch (const std::exception&) {
        m_is_out_of_memory = true;
    }
}

bool READ_FAULTS::is_incomplete() const
{
    if (m_is_out_of_memory) {
        throw std::bad_alloc();
    }
    return m_finding != PLL_FINDING::NONE;
}

std::string READ_FAULTS::file(const std::string& directory) const
{
    const bool is_refused = m_finding == PLL_FINDING::FILE_REFUSED;
    if (m_system_error == 0 && !is_refused && !is_limit(m_finding)) {
        return std::string();
    }
    return tidy_path(m_is_included ? directory + "/" + m_file : m_file);
}

std::string READ_FAULTS::reason() const
{
    if (m_finding == PLL_FINDING::FILE_REFUSED) {
        return "outside of the database's directory, to which it is confined";
    }
    return is_limit(m_finding) ? "longer than the files of a family may be; see docs/limits.md"
                               : describe_system_error(m_system_error);
}
