// What a family file says, once all of it is read: its families, types, parts and tables.
#pragma once

#include "app/lint/family_file.h"

// Tells of what reads well but cannot work. Tables are read here.
void check_families(const FAMILY_FILE& file, READINGS* readings, LINT_MESSAGES* messages);
