// What the program's exit status says.
#pragma once

enum EXIT_STATUS
{
    STATUS_MET = 0,
    STATUS_NOT_MET = 1,
    STATUS_USAGE = 2,
    STATUS_LINT_ERRORS = 3,
    STATUS_IO_FAILED = 4,
    STATUS_INTERNAL_ERROR = 5
};
