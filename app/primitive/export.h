// `export`: the setting as an instance of a primitive, or as a constraint of its input clock.
#pragma once

#include "advice/answer/answer.h"
#include "advice/devices/hdl.h"
#include "app/primitive/words.h"

#include <string>

// The instance of a PLL of no real device: counters as the library knows them.
advice::HDL_MODULE make_generic_hdl(const advice::REQUEST& request, const advice::ANSWER& answer,
                                    const std::string& module);

// Writes an instance by the template that the words name. Throws a USAGE_ERROR for a form that
// there is not, an INPUT_ERROR for a template that cannot be read.
std::string write_export(const PRIMITIVE_WORDS& words, const advice::HDL_MODULE& hdl);

// The name of the module: that of the words, else "pll". Throws a USAGE_ERROR for what is no name.
std::string name_of_module(const PRIMITIVE_WORDS& words);
