// Device sheets beside the families of a database.
#pragma once

#include "app/lint/messages.h"

#include <string>

// Looks at DIRECTORY/NAME/NAME.toml of every NAME. What a sheet says is not published is no longer
// missed in its folder.
void lint_sheets(const std::string& directory, LINT_MESSAGES* messages);

// Looks at one sheet.
void lint_sheet(const std::string& file, LINT_MESSAGES* messages);

// Whether a file is a device sheet, by its name.
bool is_sheet(const std::string& file);
