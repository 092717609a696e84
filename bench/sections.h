// The sections of the benchmark program. Each measures one kind of work and puts what is wanted of
// it into the table.
#pragma once

#include "target_table.h"

// Syntheses and listings at six input periods, each beside the lean loop. Run by Google Benchmark,
// which must have been initialised, so that its filter holds.
void measure_grid(TARGET_TABLE* table);

// Memory and instructions of single calls.
void measure_calls(TARGET_TABLE* table);

// The slowest of many requests that cannot be met, with the large limits.
void measure_worst_requests(TARGET_TABLE* table);

// Requests that tens of thousands of candidates meet.
void measure_crowds(TARGET_TABLE* table);

// Syntheses with a bandwidth table.
void measure_tables(TARGET_TABLE* table);

// Listings of VCO ratios beside the one by insertion.
void measure_ratios(TARGET_TABLE* table);

// Counters that count to a million.
void measure_wide_counters(TARGET_TABLE* table);

// Requests that are slow for one reason each.
void measure_corners(TARGET_TABLE* table);

// Reading family files.
void measure_files(TARGET_TABLE* table);

// pllcalc as a process.
void measure_processes(TARGET_TABLE* table);
