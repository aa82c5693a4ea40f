# The chunk viewer window.
add_library(vossel_chunk_viewer STATIC
  ${CMAKE_CURRENT_LIST_DIR}/frmChunk.cpp
  ${CMAKE_CURRENT_LIST_DIR}/frmChunk.h
)
target_include_directories(vossel_chunk_viewer PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(vossel_chunk_viewer PUBLIC vossel_engine vossel_window_layer vossel_dialogs
                                                 vossel_hwnd Qt6::Widgets)
