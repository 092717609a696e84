// The checks of what reads well but cannot work.
#pragma once

#include "app/lint/observer.h"

// Looks at what `manager` holds of a family that was read without an error while `observer` heard.
void check_family(PLL_MANAGER* manager, const PLL_FAMILY_INFO& family,
                  const LINT_OBSERVER& observer, LINT_MESSAGES* messages);

// Compares the size of a family's bandwidth tables with what its counters ask for.
void check_table_sizes(const PLL_FAMILY_INFO& family, const LINT_OBSERVER& observer,
                       LINT_MESSAGES* messages);
