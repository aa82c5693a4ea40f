# clsFileDialog, clsBrowseForFolderDialog and modDialogs, over Qt's file dialog.
add_library(vossel_dialogs STATIC filedialog.cpp folderdialog.cpp)
target_include_directories(vossel_dialogs PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(vossel_dialogs PUBLIC Qt6::Widgets vossel_hwnd)
