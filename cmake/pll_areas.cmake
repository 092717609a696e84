# pll_add_area(NAME WANTED): enters the folder NAME of the current folder when it is wanted. A folder
# without a CMakeLists.txt is an error: its tests would be lost in silence.
function(pll_add_area name wanted)
    if(NOT wanted)
        return()
    endif()
    if(NOT EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${name}/CMakeLists.txt")
        message(FATAL_ERROR "${CMAKE_CURRENT_SOURCE_DIR}/${name} has no CMakeLists.txt")
    endif()
    add_subdirectory(${name})
endfunction()

# pll_expect_folders(NAME...): stops the configuration when the current folder has others than these.
function(pll_expect_folders)
    file(GLOB entries RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" CONFIGURE_DEPENDS *)
    foreach(entry ${entries})
        if(IS_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}/${entry}" AND NOT entry IN_LIST ARGN)
            message(FATAL_ERROR "${CMAKE_CURRENT_SOURCE_DIR}/${entry} is not entered")
        endif()
    endforeach()
endfunction()

# pll_expect_listed(LIST LEAST): stops the configuration when the list, which was found by looking
# into a folder, has fewer than LEAST elements.
function(pll_expect_listed list least)
    list(LENGTH ${list} count)
    if(count LESS least)
        message(FATAL_ERROR "${list}: ${count} files found, at least ${least} expected")
    endif()
endfunction()
