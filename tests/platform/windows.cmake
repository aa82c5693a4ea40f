# The window layer on the offscreen platform.
find_package(Qt6 REQUIRED COMPONENTS Test)

add_executable(test_window_layer
  gui_test_main.cpp
  test_msgbox_process.cpp
  test_controls.cpp
  test_scrollbar.cpp
  test_picturebox.cpp
  test_listview.cpp
  test_listbox.cpp
)
target_link_libraries(test_window_layer PRIVATE vossel_window_layer Qt6::Test GTest::gtest)
gtest_discover_tests(test_window_layer DISCOVERY_MODE PRE_TEST
                     PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen)
