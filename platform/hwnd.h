// Window handles: a 32-bit number for each top-level window, so that code written against
// handles (dialog owners) can name a window without holding it.
#pragma once

#include <cstdint>

class QWidget;

namespace vossel {

// The window's handle, given out on first request and kept until the window is destroyed.
// 0 for no window.
int32_t HandleOfWindow(QWidget* window);
// The window behind a handle, or nullptr for 0, an unknown or a destroyed window's handle.
QWidget* WindowOfHandle(int32_t handle);

}  // namespace vossel
