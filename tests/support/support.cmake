# The test writer of GRF files and the helpers only tests use, the checked-in expected texts, and
# the real files of Debian's openttd-data: for the test suite and for the fuzz targets alike.
set(VOSSEL_BASESET_DIR /usr/share/games/openttd/baseset)
get_filename_component(VOSSEL_TESTS_SOURCE_DIR ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
add_library(vossel_test_support INTERFACE)
target_include_directories(vossel_test_support INTERFACE ${CMAKE_CURRENT_LIST_DIR})
target_compile_definitions(vossel_test_support INTERFACE
                           VOSSEL_TESTS_DIR="${VOSSEL_TESTS_SOURCE_DIR}"
                           VOSSEL_BASESET_DIR="${VOSSEL_BASESET_DIR}")

# GoogleTest's and Qt's headers are most of what a test file costs to compile: each test program
# parses them once. QT adds the window headers.
function(vossel_test_headers target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "QT" "" "")
  set(headers <gtest/gtest.h> <filesystem> <fstream> <string> <vector>)
  if(arg_QT)
    list(APPEND headers <QtWidgets> <QtTest>)
  endif()
  target_precompile_headers(${target} PRIVATE ${headers})
  # Through a precompiled header GCC 12 no longer keeps quiet the false overrun warnings it finds
  # inside the standard library's own string code.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread
                                             -Wno-format-truncation)
  endif()
endfunction()
