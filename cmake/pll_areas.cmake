# pll_add_area(NAME WANTED): enters the folder NAME of the current folder when it is wanted and
# has a CMakeLists.txt.
function(pll_add_area name wanted)
    if(wanted AND EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${name}/CMakeLists.txt")
        add_subdirectory(${name})
    endif()
endfunction()
