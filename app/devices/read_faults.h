// Why a database cannot be used, as its readers say.
#pragma once

#include "pll_observer.h"

#include <string>

// Remembers the first thing that keeps a file from being read, or from being read whole.
class READ_FAULTS : public PLL_READ_OBSERVER
{
public:
    void on_statement(const PLL_READ_STATEMENT&) override {}
    void on_finding(const PLL_READ_FINDING& finding) override;

    // Forgets what was there; before the next family is read.
    void forget();

    // True when a file was left out that is there: what was read lacks what it says. A file that
    // does not exist may be included, and is not missed. Throws std::bad_alloc when memory was
    // exhausted, which is nobody's fault.
    bool is_incomplete() const;

    // The file that cannot be read, not for what it holds, and why. The former is empty when there
    // is none. `directory` is where included files lie.
    std::string file(const std::string& directory) const;
    std::string reason() const;

private:
    PLL_FINDING m_finding = PLL_FINDING::NONE;
    bool m_is_out_of_memory = false;
    bool m_is_included = false;  // m_file is as its include names it
    std::string m_file;
    int m_system_error = 0;
};
