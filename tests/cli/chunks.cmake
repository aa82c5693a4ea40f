# chunks command tests.
vossel_cli_test(test_cli_chunks test_cli_chunks.cpp)
