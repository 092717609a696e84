// Reports of broken promises inside the library; they end the program with a status of their own.
#pragma once

// Writes every report to standard error from now on.
void watch_internal_errors();

// Whether there was any report.
bool had_internal_errors();
