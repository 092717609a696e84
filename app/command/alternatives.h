// pllcalc alternatives and pllcalc crystal: other settings, other inputs, several PLLs.
#pragma once

#include "app/command/exit_status.h"
#include "app/devices/device.h"
#include "app/output/record_list.h"
#include "app/request/request.h"

#include <optional>
#include <string>

struct ALTERNATIVE_WORDS
{
    std::optional<std::string> m_top;  // how many
    std::optional<std::string> m_by;   // a criterion
    std::optional<std::string>
        m_crystals;                     // of crystal: "24MHz,25MHz", a range; else standard ones
    std::optional<std::string> m_step;  // of a range
    std::optional<std::string> m_plls;  // how many PLLs may share the outputs
};

// The best settings of a request. Throws a USAGE_ERROR.
EXIT_STATUS list_alternatives(const REQUEST& request, const ALTERNATIVE_WORDS& words,
                              const DEVICE_WORDS& device, LIST_FORM form, std::string* text);

// The inputs that meet a request, best first. Throws a USAGE_ERROR.
EXIT_STATUS list_crystals(const REQUEST& request, const ALTERNATIVE_WORDS& words,
                          const DEVICE_WORDS& device, LIST_FORM form, std::string* text);

// Which outputs go together on several PLLs, and the command for each. Throws a USAGE_ERROR.
EXIT_STATUS list_groups(const REQUEST& request, const ALTERNATIVE_WORDS& words,
                        const DEVICE_WORDS& device, std::string* text);
