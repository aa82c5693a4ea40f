# The chunk viewer window on the offscreen platform.
add_executable(test_ui_chunk_viewer ${CMAKE_CURRENT_LIST_DIR}/test_chunk_viewer.cpp)
target_link_libraries(test_ui_chunk_viewer PRIVATE vossel_ui vossel_test_support
                                                   vossel_gui_test_main)
vossel_test_headers(test_ui_chunk_viewer QT)
gtest_discover_tests(test_ui_chunk_viewer DISCOVERY_MODE PRE_TEST
                     PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen)
target_compile_definitions(test_ui_chunk_viewer PRIVATE VOSSEL_BIN_DIR="${VOSSEL_BIN_DIR}")
