# Version-2 files through every command; PNG files are read back with QImage.
vossel_cli_test(test_cli_v2 test_cli_v2.cpp)
target_link_libraries(test_cli_v2 PRIVATE Qt6::Gui)
