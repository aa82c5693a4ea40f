# modRegistry over Wine's registry file.
add_library(vossel_registry STATIC registry.cpp)
target_include_directories(vossel_registry PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(vossel_registry PRIVATE Qt6::Core)
