// Reports of broken promises inside the library; they end the program with a status of their own.
#pragma once

// Writes every report to standard error from now on.
void watch_internal_errors();

// Whether any report was written.
bool had_internal_errors();

// While it lives, what a faulty database makes the library report is neither written nor counted:
// whoever reads the database tells of it.
class DATABASE_REPORTS
{
public:
    DATABASE_REPORTS();
    ~DATABASE_REPORTS();
    DATABASE_REPORTS(const DATABASE_REPORTS&) = delete;
    DATABASE_REPORTS& operator=(const DATABASE_REPORTS&) = delete;
};
