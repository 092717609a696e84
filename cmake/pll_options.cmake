# What is built. Those who embed the tree get the library alone; our own builds get the rest.
include(GNUInstallDirs)

option(PLL_BUILD_APP "Build the program pllcalc" ${PROJECT_IS_TOP_LEVEL})
option(PLL_BUILD_EXAMPLES "Build the example hosts" ${PROJECT_IS_TOP_LEVEL})
option(PLL_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(PLL_BUILD_BENCH "Build the benchmarks" OFF)
option(PLL_INSTALL "Write the rules of installation" ${PROJECT_IS_TOP_LEVEL})
option(PLL_WARNINGS_AS_ERRORS "Treat the warnings of our own sources as errors" OFF)
option(PLL_HARDENING "Build with the hardening flags of distributions" ${PROJECT_IS_TOP_LEVEL})
option(PLL_DEBUG_SWITCH "Let files in the current directory switch debugging on and off" ON)

# Counts the incompatible changes of the exported classes; it is the number in libpll.so.N.
set(PLL_ABI_NUMBER 1)

# Standard C++ only, in all folders of this tree.
set(CMAKE_CXX_EXTENSIONS OFF)

# A build without a type would be one without optimisation.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Type of the build" FORCE)
endif()

# Installed programs find the library beside them, wherever the tree is moved to. The library of
# the build lies as far from the program of the build, so both are linked as they are installed:
# CMake would else lengthen the search path of the build with empty entries, to make room for the
# other one, and an empty entry makes the loader search the current directory.
file(RELATIVE_PATH PLL_BIN_TO_LIB "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
cmake_path(SET PLL_BUILT_LIBRARY_DIR NORMALIZE "${PROJECT_BINARY_DIR}/app/${PLL_BIN_TO_LIB}")
cmake_path(IS_PREFIX PROJECT_BINARY_DIR "${PLL_BUILT_LIBRARY_DIR}" PLL_BUILT_AS_INSTALLED)
if(CMAKE_CONFIGURATION_TYPES OR NOT PLL_BUILT_AS_INSTALLED)
    set(PLL_BUILT_AS_INSTALLED OFF)
    set(PLL_BUILT_LIBRARY_DIR "${PROJECT_BINARY_DIR}/lib")
endif()

# pll_set_search_path(TARGET [ENTRY...]): where the loader looks for the libraries of TARGET.
function(pll_set_search_path target)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${ARGN}"
        BUILD_WITH_INSTALL_RPATH ${PLL_BUILT_AS_INSTALLED} INSTALL_RPATH_USE_LINK_PATH OFF)
endfunction()

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    if(PLL_BUILD_TESTS)
        enable_testing()
    endif()
endif()
