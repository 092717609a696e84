// pllcalc verify: whether an answer in JSON, or the PLLs of a Verilog file, are right.
#pragma once

#include "app/command/exit_status.h"
#include "app/devices/device.h"
#include "app/output/record_list.h"
#include "app/primitive/words.h"

#include <string>

struct VERIFY_WORDS
{
    PRIMITIVE_WORDS m_primitive;  // the file, and what a Verilog file leaves open
    DEVICE_WORDS m_device;        // of answers: takes the place of the one that they name
    LIST_FORM m_form = LIST_FORM::TABLE;
};

// Checks what the file holds: an answer, a list of alternatives, or Verilog. Throws a USAGE_ERROR
// for what is no answer, an INPUT_ERROR for a file that cannot be read.
EXIT_STATUS verify_any(const VERIFY_WORDS& words, std::string* text);
