# sheet command tests: what it writes is read back with QImage, against the shared cell rule.
vossel_cli_test(test_cli_sheet test_cli_sheet.cpp)
target_link_libraries(test_cli_sheet PRIVATE vossel_engine vossel_display Qt6::Gui)
