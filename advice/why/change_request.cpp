#include "advice/why/change_request.h"

#include <algorithm>

namespace advice {

namespace {

int index_in(const std::vector<std::size_t>& outputs, int output)
{
    const auto found = std::find(outputs.begin(), outputs.end(), static_cast<std::size_t>(output));
    return output == NO_OUTPUT || found == outputs.end()
               ? NO_OUTPUT
               : static_cast<int>(found - outputs.begin());
}

}  // namespace

REQUEST with_frequency(REQUEST request, std::size_t output, const RATIONAL& hertz)
{
    request.m_outputs[output].m_frequency = hertz;
    request.m_outputs[output].m_ratio = hertz / request.m_input.m_frequency;
    return request;
}

REQUEST with_input(REQUEST request, const RATIONAL& hertz)
{
    const FREQUENCY_UNIT unit = request.m_input.m_unit;
    request.m_input = make_input(hertz);
    request.m_input.m_unit = unit;
    for (OUTPUT_WISH& wish : request.m_outputs) {
        wish.m_ratio = wish.m_frequency / hertz;
    }
    return request;
}

std::optional<REQUEST> without_output(REQUEST request, std::size_t output)
{
    const int index = static_cast<int>(output);
    const bool is_needed =
        request.m_feedback == index || request.m_outputs.size() == 1 ||
        std::any_of(request.m_outputs.begin(), request.m_outputs.end(),
                    [=](const OUTPUT_WISH& wish) { return wish.m_phase_to == index; });
    if (is_needed) {
        return std::nullopt;
    }
    std::vector<std::size_t> kept;
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        if (i != output) {
            kept.push_back(i);
        }
    }
    return with_outputs(request, kept);
}

REQUEST with_outputs(const REQUEST& request, const std::vector<std::size_t>& outputs)
{
    REQUEST changed = request;
    changed.m_outputs.clear();
    for (const std::size_t output : outputs) {
        changed.m_outputs.push_back(request.m_outputs[output]);
        OUTPUT_WISH& wish = changed.m_outputs.back();
        wish.m_phase_to = index_in(outputs, wish.m_phase_to);
    }
    changed.m_feedback = index_in(outputs, request.m_feedback);
    return changed;
}

}  // namespace advice
