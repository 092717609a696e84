// Device sheets beside the families of a database.
#pragma once

#include "app/lint/messages.h"
#include "app/source/readings.h"

#include <string>

// Looks at DIRECTORY/NAME/NAME.toml of every NAME. What a sheet says is not published is not missed
// in its folder: call it before the files there are looked at.
void lint_sheets(const std::string& directory, READINGS* readings, LINT_MESSAGES* messages);

// Looks at one sheet.
void lint_sheet(const std::string& file, READINGS* readings, LINT_MESSAGES* messages);

// Whether a file is a device sheet, by its name.
bool is_sheet(const std::string& file);
