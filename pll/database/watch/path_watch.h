// Watches the reader of a path file for an observer.
#pragma once

#include "database/files/path_file.h"
#include "database/watch/line_watch.h"

namespace pll_internal {

class PLL_PATH_WATCH : public PLL_PATH_LISTENER
{
public:
    // The observer must outlive the watch.
    explicit PLL_PATH_WATCH(PLL_READ_OBSERVER* observer);

    void begin_line(const char* line, const PLL_INPUT_FILE& file, const char* file_name) override;
    void hear(const PLL_FAULT& fault) override;
    void hear_of_family(const char* name, const PLL_FAMILY_INFO* family) override;
    void end_line(PLL_FINDING reason, PLL_WORDS* rest) override;
    void hear_of_file(const PLL_FAULT& fault, const char* file, int line) override;

private:
    PLL_LINE_WATCH m_line;
    PLL_READ_STATEMENT m_statement;  // of the line
};

}  // namespace pll_internal
