# The commit that `--version` prints; a new commit configures again. A tree without git has none.
find_package(Git QUIET)
set(commit "unknown")
if(GIT_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} describe --always --dirty WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}"
        OUTPUT_VARIABLE described OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE failed)
    execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --git-path logs/HEAD WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}"
        OUTPUT_VARIABLE log OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(failed EQUAL 0)
        set(commit "${described}")
    endif()
    get_filename_component(log "${log}" ABSOLUTE BASE_DIR "${CMAKE_SOURCE_DIR}")
    if(EXISTS "${log}")
        set_property(DIRECTORY "${CMAKE_SOURCE_DIR}" APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${log}")
    endif()
endif()
set_source_files_properties(control/build_info.cpp PROPERTIES COMPILE_DEFINITIONS
    "TOLVANE_VERSION=${PROJECT_VERSION};TOLVANE_COMMIT=${commit};TOLVANE_BUILD_TYPE=${CMAKE_BUILD_TYPE}")
