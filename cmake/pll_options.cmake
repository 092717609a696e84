# What is built. Those who embed the tree get the library alone; our own builds get the rest.
include(GNUInstallDirs)

option(PLL_BUILD_APP "Build the program pllcalc" ${PROJECT_IS_TOP_LEVEL})
option(PLL_BUILD_EXAMPLES "Build the example hosts" ${PROJECT_IS_TOP_LEVEL})
option(PLL_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(PLL_BUILD_BENCH "Build the benchmarks" OFF)
option(PLL_INSTALL "Write the rules of installation" ${PROJECT_IS_TOP_LEVEL})
option(PLL_WARNINGS_AS_ERRORS "Treat the warnings of our own sources as errors" OFF)

# Counts the incompatible changes of the exported classes; it is the number in libpll.so.N.
set(PLL_ABI_NUMBER 1)

# Standard C++ only, in all folders of this tree.
set(CMAKE_CXX_EXTENSIONS OFF)

# A build without a type would be one without optimisation.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Type of the build" FORCE)
endif()

# Installed programs find the library beside them, wherever the tree is moved to.
if(PROJECT_IS_TOP_LEVEL)
    file(RELATIVE_PATH PLL_BIN_TO_LIB
         "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set(CMAKE_INSTALL_RPATH "$ORIGIN/${PLL_BIN_TO_LIB}")
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    if(PLL_BUILD_TESTS)
        enable_testing()
    endif()
endif()
