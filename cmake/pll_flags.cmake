# The flags of everything of ours: library, program, tests and benchmarks link pll_flags PRIVATE.
add_library(pll_flags INTERFACE)
target_compile_features(pll_flags INTERFACE cxx_std_20)

# The answers are promised to the last bit of a double, so no compiler may fuse, reorder or
# approximate, whatever the flags of an embedding build say, as a whole or one by one.
set(PLL_EXACT_ARITHMETIC -fno-fast-math -fno-unsafe-math-optimizations)
target_compile_options(pll_flags INTERFACE ${PLL_EXACT_ARITHMETIC} -fno-associative-math
    -fno-reciprocal-math -fno-finite-math-only -fsigned-zeros -ffp-contract=off)

# A compiler that links with such flags adds a start-up routine that flushes denormal numbers to
# zero: in a library, for the whole host that loads it. -O2 takes back an -Ofast.
target_link_options(pll_flags INTERFACE -O2 ${PLL_EXACT_ARITHMETIC})

target_compile_options(pll_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
    $<$<BOOL:${PLL_WARNINGS_AS_ERRORS}>:-Werror>)

# The same sources give the same bytes, wherever the tree and its build lie. A folder of the build
# may lie in that of the sources or around it: the last map that fits counts. What a debugger and
# the counting of lines need to find the sources stays in a debug build.
foreach(kind macro file)
    set(map "-f${kind}-prefix-map=${PROJECT_BINARY_DIR}/=build/"
            "-f${kind}-prefix-map=${PROJECT_SOURCE_DIR}/=")
    set(PLL_${kind}_MAP "${map}")
endforeach()
target_compile_options(pll_flags INTERFACE
    "$<IF:$<CONFIG:Debug>,${PLL_macro_MAP},${PLL_file_MAP}>")

# What distributions build their packages with. None of it changes an answer.
if(PLL_HARDENING)
    target_compile_options(pll_flags INTERFACE -fstack-protector-strong
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
    target_link_options(pll_flags INTERFACE -Wl,-z,relro -Wl,-z,now)
    include(CheckCXXCompilerFlag)
    check_cxx_compiler_flag(-fcf-protection=full PLL_HAS_CONTROL_FLOW_PROTECTION)
    if(PLL_HAS_CONTROL_FLOW_PROTECTION)
        target_compile_options(pll_flags INTERFACE -fcf-protection=full)
    endif()
endif()
