# The dialog wrappers, with the platform's dialogs replaced by fakes: nothing is shown.
add_executable(test_dialogs test_dialogs.cpp)
target_link_libraries(test_dialogs PRIVATE vossel_dialogs GTest::gtest)
gtest_discover_tests(test_dialogs DISCOVERY_MODE PRE_TEST
                     PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen)
