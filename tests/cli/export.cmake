# export command tests: what it writes is read back with QImage, against the engine's own store.
vossel_cli_test(test_cli_export test_cli_export.cpp)
target_link_libraries(test_cli_export PRIVATE vossel_engine vossel_display Qt6::Gui)
# The export read back as the NewGRF encoder reads it.
vossel_cli_test(test_cli_encoder test_cli_encoder.cpp)
target_link_libraries(test_cli_encoder PRIVATE vossel_engine Qt6::Gui)
