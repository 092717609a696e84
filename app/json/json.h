// JSON documents of the program. Keys keep the order in which they are written.
#pragma once

// Its LIST_FORM::JSON must stand before the name here, which would else shadow it.
#include "app/output/record_list.h"

#include <nlohmann/json.hpp>

#include <string>

typedef nlohmann::ordered_json JSON;

// Grows with every change that a program which reads our documents could notice; new keys are none.
constexpr int SCHEMA_VERSION = 1;

// Reads a document. Throws a USAGE_ERROR that names `source` and the line where it ends to be one.
JSON read_document(const std::string& source, const std::string& text);

// One object on one line, or over several with `indent` spaces a level; ends with a line break.
// Bytes that are no UTF-8 are replaced.
std::string write_document(const JSON& document, int indent);
