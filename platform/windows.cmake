# The window layer: message box, pump and folders, control moves, scroll bar, picture box, line,
# list view, list box and the following of a file on disk.
add_library(vossel_window_layer STATIC
  ${CMAKE_CURRENT_LIST_DIR}/msgbox.cpp
  ${CMAKE_CURRENT_LIST_DIR}/process.cpp
  ${CMAKE_CURRENT_LIST_DIR}/controls.cpp
  ${CMAKE_CURRENT_LIST_DIR}/picturebox.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scrollbar.cpp
  ${CMAKE_CURRENT_LIST_DIR}/line.cpp
  ${CMAKE_CURRENT_LIST_DIR}/listview.cpp
  ${CMAKE_CURRENT_LIST_DIR}/listbox.cpp
  ${CMAKE_CURRENT_LIST_DIR}/filewatch.cpp
  ${CMAKE_CURRENT_LIST_DIR}/msgbox.h
  ${CMAKE_CURRENT_LIST_DIR}/process.h
  ${CMAKE_CURRENT_LIST_DIR}/controls.h
  ${CMAKE_CURRENT_LIST_DIR}/picturebox.h
  ${CMAKE_CURRENT_LIST_DIR}/scrollbar.h
  ${CMAKE_CURRENT_LIST_DIR}/line.h
  ${CMAKE_CURRENT_LIST_DIR}/listview.h
  ${CMAKE_CURRENT_LIST_DIR}/listbox.h
  ${CMAKE_CURRENT_LIST_DIR}/filewatch.h
)
target_include_directories(vossel_window_layer PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(vossel_window_layer PUBLIC Qt6::Widgets)
