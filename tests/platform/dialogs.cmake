# The dialog wrappers with a fake platform dialog, and the real Qt dialogs and message box.
add_executable(test_dialogs test_dialogs.cpp)
target_link_libraries(test_dialogs PRIVATE vossel_dialogs vossel_window_layer vossel_test_support
                                           vossel_gui_test_main)
vossel_test_headers(test_dialogs QT)
gtest_discover_tests(test_dialogs DISCOVERY_MODE PRE_TEST
                     PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen)
