# Installation: headers, both libraries, the program, the CMake package and pll.pc. Nothing in
# it holds an absolute path, so that the installed tree can be moved.
if(NOT PLL_INSTALL)
    return()
endif()
include(CMakePackageConfigHelpers)

set(PLL_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/pll")
set(PLL_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS pll pll_static pll_advice pll_advice_static EXPORT pllTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" "${PROJECT_SOURCE_DIR}/h/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/libpll" FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/advice/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/libpll/advice" FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/data/devices" "${PROJECT_SOURCE_DIR}/data/templates"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/libpll")
if(TARGET pllcalc)
    install(TARGETS pllcalc RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

install(EXPORT pllTargets NAMESPACE pll:: DESTINATION "${PLL_PACKAGE_DIR}")
configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/pllConfig.cmake.in" "${PROJECT_BINARY_DIR}/pllConfig.cmake"
    INSTALL_DESTINATION "${PLL_PACKAGE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/pllConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/pllConfig.cmake" "${PROJECT_BINARY_DIR}/pllConfigVersion.cmake"
    DESTINATION "${PLL_PACKAGE_DIR}")

# pkg-config knows where the file lies; the prefix is found from there.
file(RELATIVE_PATH PLL_PKGCONFIG_TO_PREFIX
     "${CMAKE_INSTALL_PREFIX}/${PLL_PKGCONFIG_DIR}" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" PLL_PKGCONFIG_TO_PREFIX "${PLL_PKGCONFIG_TO_PREFIX}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/pll.pc.in" "${PROJECT_BINARY_DIR}/pll.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/pll.pc" DESTINATION "${PLL_PKGCONFIG_DIR}")
