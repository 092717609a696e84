// Requests that differ from another in one wish.
#pragma once

#include "advice/request/request.h"

#include <optional>

namespace advice {

// Another frequency of an output; its phase stays in degrees.
REQUEST with_frequency(REQUEST request, std::size_t output, const RATIONAL& hertz);

// Another input; the outputs keep their frequencies.
REQUEST with_input(REQUEST request, const RATIONAL& hertz);

// Without an output. None when the feedback or the phase of another output depends on it, or when
// it is the only one.
std::optional<REQUEST> without_output(REQUEST request, std::size_t output);

// Only the outputs of the list, ascending indexes; relations to the others are dropped.
REQUEST with_outputs(const REQUEST& request, const std::vector<std::size_t>& outputs);

}  // namespace advice
