# The program on the desktop: MIME type and drops offscreen; both programs' --version and vossel
# --help; and the real program started with a file on a virtual X display, by an absolute and a
# relative name.
add_executable(test_ui_desktop ${CMAKE_CURRENT_LIST_DIR}/test_desktop.cpp)
target_link_libraries(test_ui_desktop PRIVATE vossel_ui vossel_test_support vossel_gui_test_main)
vossel_test_headers(test_ui_desktop QT)
target_compile_definitions(test_ui_desktop PRIVATE
  VOSSEL_BIN_DIR="${VOSSEL_BIN_DIR}" VOSSEL_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
gtest_discover_tests(test_ui_desktop DISCOVERY_MODE PRE_TEST
                     PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen)

set(VOSSEL_SMOKE_OPEN sh ${CMAKE_CURRENT_LIST_DIR}/smoke_open_xvfb.sh $<TARGET_FILE:vossel>)
add_test(NAME ui_smoke_open_xvfb COMMAND ${VOSSEL_SMOKE_OPEN} / ${VOSSEL_BASESET_DIR}/openttd.grf
                                         "Viewing sprite 1 (4 x 1)")
add_test(NAME ui_smoke_open_relative_xvfb COMMAND ${VOSSEL_SMOKE_OPEN} ${VOSSEL_BASESET_DIR}
                                                  openttd.grf "Viewing sprite 1 (4 x 1)")
set_tests_properties(ui_smoke_open_xvfb ui_smoke_open_relative_xvfb
                     PROPERTIES TIMEOUT 150 SKIP_RETURN_CODE 77)

# --version and --help answer without any display.
add_test(NAME ui_version COMMAND vossel --version)
add_test(NAME ui_help COMMAND vossel --help)
add_test(NAME cli_version COMMAND vossel-cli --version)
set_tests_properties(ui_version ui_help PROPERTIES ENVIRONMENT_MODIFICATION
                     "QT_QPA_PLATFORM=unset:;DISPLAY=unset:;WAYLAND_DISPLAY=unset:")
set_tests_properties(ui_version PROPERTIES
                     PASS_REGULAR_EXPRESSION "(^|\n)Vossel ${PROJECT_VERSION}\n$")
set_tests_properties(ui_help PROPERTIES
                     PASS_REGULAR_EXPRESSION "^Usage: [^\n]*vossel \\[options\\] \\[FILE\\]\n")
set_tests_properties(cli_version PROPERTIES PASS_REGULAR_EXPRESSION
                                            "^vossel-cli ${PROJECT_VERSION}\n$")
