// The names of findings. They stand in suppressions and in the results of review tools: a name,
// once given, stays.
#include "pll_observer.h"

#include <iterator>

namespace {

// By finding; those that make reading fail come first.
constexpr const char* const NAMES[] = {
    "path-file-not-opened",
    "no-family",
    "family-without-file",
    "family-file-not-opened",
    "no-statement",
    "unknown-keyword",
    "unknown-pll-type",
    "name-missing",
    "number-expected",
    "real-expected",
    "list-empty",
    "include-too-deep",
    "too-many-files",
    "table-not-opened",
    "table-too-large",
    "table-format-missing",
    "table-number-expected",
    "table-line-unfinished",
    "table-without-rows",
    "read-failed",
    "out-of-memory",
    "too-many-bytes",
    "too-many-statements",
    "file-refused",
    "out-of-scope",
    "include-not-opened",
    "unknown-reconfig-type",
    "quoted-reconfig-type",
    "unknown-counter",
    "unknown-flag",
    "extra-words",
    "list-cut-short",
    "number-cut",
    "post-scale-too-large",
    "line-cut",
    "line-with-nul",
    "part-in-other-grade",
    "foreign-family",
    "table-format-unended",
    "row-over-lines",
    "row-without-group",
    "rows-after-empty-line",
    "carriage-return-line",
    "file-outside",
    "",
};
static_assert(std::size(NAMES) == static_cast<std::size_t>(PLL_FINDING::NONE) + 1);

}  // namespace

const char* pll_get_finding_name(PLL_FINDING finding)
{
    const auto place = static_cast<std::size_t>(finding);
    return place < std::size(NAMES) ? NAMES[place] : "";
}

bool pll_is_read_error(PLL_FINDING finding)
{
    return finding < PLL_FINDING::OUT_OF_SCOPE;
}
