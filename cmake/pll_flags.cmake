# The flags of everything of ours: library, program, tests and benchmarks link pll_flags PRIVATE.
add_library(pll_flags INTERFACE)
target_compile_features(pll_flags INTERFACE cxx_std_20)

# The answers are promised to the last bit of a double, so no compiler may fuse, reorder or
# approximate, whatever the flags of an embedding build say.
target_compile_options(pll_flags INTERFACE -fno-fast-math -ffp-contract=off)

target_compile_options(pll_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    $<$<BOOL:${PLL_WARNINGS_AS_ERRORS}>:-Werror>)
