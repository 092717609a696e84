// The internal errors of the library beside those of the model.
#pragma once

#include "model_records.h"

#include <ostream>

// Gathers the conditions that the library reports while it lives.
class REPORT_GATHERER
{
public:
    explicit REPORT_GATHERER(MODEL_REPORTS* reports);
    ~REPORT_GATHERER();
    REPORT_GATHERER(const REPORT_GATHERER&) = delete;
    REPORT_GATHERER& operator=(const REPORT_GATHERER&) = delete;
};

// Writes down where the two lists of reports part.
void compare_reports(const char* what, const MODEL_REPORTS& library, const MODEL_REPORTS& model,
                     std::ostream& stream);
