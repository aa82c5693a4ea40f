# modRegistry over Wine's registry file; standard library only.
add_library(vossel_registry STATIC registry.cpp)
target_include_directories(vossel_registry PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
