# sprite command tests: the PNG files are read back with QImage, against the engine's own store.
vossel_cli_test(test_cli_sprite test_cli_sprite.cpp)
target_link_libraries(test_cli_sprite PRIVATE vossel_display Qt6::Gui)
