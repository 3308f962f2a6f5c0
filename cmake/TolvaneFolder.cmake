# One target per folder, named after its path (platform/kernel -> platform_kernel). Headers are
# included by their path from the root ("platform/kernel/clock.h"), but only through a view of the
# tree that shows this folder alone: an include of a folder that is not in DEPENDS does not compile.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

add_library(tolvane_flags INTERFACE)
# Warnings are errors only with the compiler that builds the commands.
target_compile_options(tolvane_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wno-sign-conversion $<$<CXX_COMPILER_ID:GNU>:-Werror> -fno-strict-aliasing)
# Hardening, which tools/check-hardening looks for in the commands that were built.
target_compile_options(tolvane_flags INTERFACE -fPIE -fstack-protector-strong
    -fstack-clash-protection)
if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64)
    target_compile_options(tolvane_flags INTERFACE -fcf-protection)
endif()
target_compile_definitions(tolvane_flags INTERFACE _GLIBCXX_ASSERTIONS)
target_link_options(tolvane_flags INTERFACE -pie -Wl,-z,relro,-z,now,-z,noexecstack)
set(CMAKE_SKIP_RPATH ON)
# GCC 12, optimising, warns of overlaps in the library's own text + text where there are none.
target_compile_options(tolvane_flags INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
# The libraries need it too, and a precompiled header must have the same options.
target_compile_options(tolvane_flags INTERFACE -pthread)
target_link_options(tolvane_flags INTERFACE -pthread)
if(TOLVANE_SANITIZE)
    target_compile_options(tolvane_flags INTERFACE -fsanitize=${TOLVANE_SANITIZE}
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    # These checks make a quarter of clang's code; the address sanitizer, or the other compiler in the
    # asan preset, finds the same.
    target_compile_options(tolvane_flags INTERFACE $<$<CXX_COMPILER_ID:Clang>:
        -fno-sanitize=vptr,null,alignment,object-size,function>)
    target_link_options(tolvane_flags INTERFACE -fsanitize=${TOLVANE_SANITIZE})
else()
    target_compile_options(tolvane_flags INTERFACE -U_FORTIFY_SOURCE
        $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=3>)
endif()

# Precompiles what most folders include, where a folder's sources are compiled together; not where they
# are optimised, since GCC 12 then warns of the library's own code.
if(CMAKE_UNITY_BUILD AND CMAKE_BUILD_TYPE STREQUAL "Debug")
    file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/standard_headers.cpp" CONTENT "")
    add_library(tolvane_standard_headers STATIC "${CMAKE_BINARY_DIR}/standard_headers.cpp")
    target_link_libraries(tolvane_standard_headers PRIVATE tolvane_flags)
    target_precompile_headers(tolvane_standard_headers PRIVATE <algorithm> <chrono> <filesystem>
        <fstream> <functional> <map> <memory> <mutex> <optional> <sstream> <string> <thread> <vector>)
endif()

# A view of the tree with the one folder in it.
function(tolvane_view folder out)
    string(REPLACE "/" "_" target "${folder}")
    set(view "${CMAKE_BINARY_DIR}/include/${target}")
    get_filename_component(parent "${view}/${folder}" DIRECTORY)
    file(MAKE_DIRECTORY "${parent}")
    file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${folder}" "${view}/${folder}" SYMBOLIC)
    set(${out} "${view}" PARENT_SCOPE)
endfunction()

# tolvane_folder(platform/kernel DEPENDS platform_api [LIBRARIES pkg...] [PRIVATE_LIBRARIES pkg...])
# Every .cpp of the folder itself belongs to the target; a folder without one is headers only.
function(tolvane_folder folder)
    cmake_parse_arguments(ARG "" "" "DEPENDS;LIBRARIES;PRIVATE_LIBRARIES;EXCLUDE" ${ARGN})
    string(REPLACE "/" "_" target "${folder}")
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/${folder}/*.cpp")
    foreach(excluded IN LISTS ARG_EXCLUDE)
        list(REMOVE_ITEM sources "${CMAKE_SOURCE_DIR}/${folder}/${excluded}")
    endforeach()
    if(TOLVANE_REVERSE_SOURCES)
        list(REVERSE sources)
    endif()
    tolvane_view(${folder} view)
    if(sources)
        add_library(${target} STATIC ${sources})
        target_include_directories(${target} PUBLIC "${view}")
        target_link_libraries(${target} PUBLIC tolvane_flags ${ARG_DEPENDS} ${ARG_LIBRARIES}
            PRIVATE ${ARG_PRIVATE_LIBRARIES})
        if(TARGET tolvane_standard_headers AND NOT ${folder} STREQUAL tests/support)
            target_precompile_headers(${target} REUSE_FROM tolvane_standard_headers)
        endif()
    else()
        add_library(${target} INTERFACE)
        target_include_directories(${target} INTERFACE "${view}")
        target_link_libraries(${target} INTERFACE tolvane_flags ${ARG_DEPENDS} ${ARG_LIBRARIES})
    endif()
endfunction()

# tolvane_embed(unit_report tolvane_report_style unit/report/style.css): the file in the target, between the
# symbols NAME_begin and NAME_end.
function(tolvane_embed target name path)
    set(file "${CMAKE_SOURCE_DIR}/${path}")
    set(source "${CMAKE_BINARY_DIR}/embedded/${name}.S")
    configure_file("${CMAKE_SOURCE_DIR}/cmake/embedded.S.in" "${source}" @ONLY)
    target_sources(${target} PRIVATE "${source}")
    set_source_files_properties("${source}" PROPERTIES OBJECT_DEPENDS "${file}")
endfunction()

# tolvane_executable(dvrsim dvrsim/program/main.cpp LIBRARIES ...): a command for users; all of them are
# in one folder of the build tree, so that they find each other. Its target has its name, or
# NAME_command where a folder has that.
function(tolvane_executable name source)
    cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
    set(target ${name})
    if(TARGET ${name})
        set(target ${name}_command)
    endif()
    add_executable(${target} "${CMAKE_SOURCE_DIR}/${source}")
    target_link_libraries(${target} PRIVATE ${ARG_LIBRARIES})
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name}
        RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
endfunction()
