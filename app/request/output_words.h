// The words of outputs: "74.25MHz,phase=90,duty=40", "pix=148.5MHz@90" or "ratio=11/4,even".
#pragma once

#include "app/request/request.h"

#include <string>
#include <vector>

// The wishes of all outputs. Messages call them "--out 1" and so on. Throws a USAGE_ERROR.
std::vector<OUTPUT_WISH> read_outputs(const std::vector<std::string>& texts,
                                      const INPUT_CLOCK& input);

// The index of the output that a word names: its name, or its number from 1. Throws a USAGE_ERROR.
int find_output(const std::string& argument, const std::string& word,
                const std::vector<OUTPUT_WISH>& outputs);
