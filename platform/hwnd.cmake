add_library(vossel_hwnd STATIC hwnd.cpp)
target_include_directories(vossel_hwnd PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(vossel_hwnd PUBLIC Qt6::Widgets)
