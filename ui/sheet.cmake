# The Sprite Sheet window.
add_library(vossel_sheet_viewer STATIC
  ${CMAKE_CURRENT_LIST_DIR}/frmSheet.cpp
  ${CMAKE_CURRENT_LIST_DIR}/frmSheet.h
)
target_include_directories(vossel_sheet_viewer PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(vossel_sheet_viewer PUBLIC vossel_engine vossel_display Qt6::Widgets
                      PRIVATE Qt6::Concurrent)
