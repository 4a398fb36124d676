# Helpers by which every folder says what it holds. Each is a thin wrapper around one target.

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

find_program(GLINTAR_CCACHE ccache)
if(GLINTAR_CCACHE)
    # Precompiled headers need these two sloppinesses, or ccache never hits.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${GLINTAR_CCACHE})
endif()

# A release is optimised as a whole when it is linked, which makes it a fifth smaller.
set(CMAKE_INTERPROCEDURAL_OPTIMIZATION_RELEASE ON)

# What has to be fast in a release. The rest waits for it and for the network, and is compiled for size: nearly all of a
# program's code stays in memory while it runs. The fast ones go without the precompiled header, which is of one kind.
set(GLINTAR_FAST json text config market platform_qt_graphics)

# The debug log is printed in debug builds only.
add_library(glintar_options INTERFACE)
target_include_directories(glintar_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(glintar_options INTERFACE
    -pthread -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wconversion -Wno-sign-conversion -Wno-missing-field-initializers
    $<$<BOOL:${GLINTAR_WERROR}>:-Werror>
    $<$<AND:$<CONFIG:Release>,$<NOT:$<BOOL:$<TARGET_PROPERTY:GLINTAR_IS_FAST>>>>:-Os;-ffunction-sections;-fdata-sections>
    $<$<AND:$<BOOL:${GLINTAR_CCACHE}>,$<CXX_COMPILER_ID:GNU>>:-fpch-preprocess>)
target_link_options(glintar_options INTERFACE $<$<CONFIG:Release>:-Wl,--gc-sections,-z,pack-relative-relocs>)
if(GLINTAR_SANITIZE)
    target_compile_options(glintar_options INTERFACE
        -fsanitize=${GLINTAR_SANITIZE} -fno-omit-frame-pointer -O1 $<$<BOOL:${GLINTAR_FUZZ}>:-fsanitize=fuzzer-no-link>)
    if(GLINTAR_SANITIZE MATCHES undefined)
        target_compile_options(glintar_options INTERFACE -fno-sanitize-recover=undefined)
    endif()
    target_link_options(glintar_options INTERFACE -fsanitize=${GLINTAR_SANITIZE})
endif()

# Headers that most files read, compiled once for the libraries and once, with GoogleTest's, for the tests: each copy takes
# 100 MB and more, so that one for every target would fill a disk. All that use one are compiled as position-independent
# code, which GCC asks of them.
set(GLINTAR_PCH_HEADERS <algorithm> <chrono> <expected> <filesystem> <functional> <map> <memory> <mutex> <optional>
    <span> <string> <string_view> <unordered_map> <utility> <variant> <vector>)

# _glintar_pch_owner(NAME HEADERS ... [LIBRARIES targets...])
function(_glintar_pch_owner name)
    cmake_parse_arguments(arg "" "" "HEADERS;LIBRARIES" ${ARGN})
    file(WRITE ${CMAKE_BINARY_DIR}/pch/${name}.cpp "")
    add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/pch/${name}.cpp)
    target_link_libraries(${name} PRIVATE glintar_options ${arg_LIBRARIES})
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()
_glintar_pch_owner(glintar_headers HEADERS ${GLINTAR_PCH_HEADERS})
if(GLINTAR_TESTS)
    _glintar_pch_owner(glintar_test_headers
        HEADERS ${GLINTAR_PCH_HEADERS} <gmock/gmock.h> <gtest/gtest.h> LIBRARIES GTest::gmock)
endif()

# glintar_library(NAME SOURCES ... [PUBLIC targets...] [PRIVATE targets...])
function(glintar_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(glintar_${name} STATIC ${arg_SOURCES})
    target_link_libraries(glintar_${name} PUBLIC glintar_options ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
    if(name IN_LIST GLINTAR_FAST AND CMAKE_BUILD_TYPE STREQUAL Release)
        set_target_properties(glintar_${name} PROPERTIES GLINTAR_IS_FAST ON)
    else()
        target_precompile_headers(glintar_${name} REUSE_FROM glintar_headers)
    endif()
endfunction()

# glintar_test(NAME SOURCES ... [LIBRARIES targets...] [LABELS ...] [COMMAND wrapper...] [DEFINITIONS ...])
# One test program a folder. COMMAND is put before the program.
function(glintar_test name)
    cmake_parse_arguments(arg "" "TIMEOUT" "SOURCES;LIBRARIES;LABELS;COMMAND;DEFINITIONS" ${ARGN})
    add_executable(${name}_test ${arg_SOURCES})
    target_link_libraries(${name}_test PRIVATE glintar_options ${arg_LIBRARIES} GTest::gmock_main)
    target_include_directories(${name}_test PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name}_test PRIVATE
        GLINTAR_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data" GLINTAR_RESOURCES="${PROJECT_SOURCE_DIR}/src/resources"
        ${arg_DEFINITIONS})
    target_compile_options(${name}_test PRIVATE -fPIC)
    target_precompile_headers(${name}_test REUSE_FROM glintar_test_headers)
    add_test(NAME ${name} COMMAND ${arg_COMMAND} $<TARGET_FILE:${name}_test>)
    if(NOT arg_LABELS)
        set(arg_LABELS unit)
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT ${arg_TIMEOUT})
endfunction()
