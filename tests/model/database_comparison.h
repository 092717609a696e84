// One random database through the library and through the model.
#pragma once

#include "counts.h"
#include "random_database.h"

#include <string>

// Writes the database's files into the empty directory `directory`, takes every step both ways and
// compares what each gives: its result, the internal errors, every record of the database, every
// field of the PLL before and after its synthesis. Empty when all agree. Counts what came up.
std::string compare_database(const RANDOM_DATABASE& database, const std::string& directory,
                             COUNTS* counts);
