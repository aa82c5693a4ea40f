#include "hwnd.h"

#include <map>

#include <QObject>
#include <QWidget>

namespace vossel {

namespace {

std::map<int32_t, QWidget*>& Handles() {
  static std::map<int32_t, QWidget*> handles;
  return handles;
}

}  // namespace

int32_t HandleOfWindow(QWidget* window) {
  if (window == nullptr) return 0;
  for (const auto& [handle, w] : Handles())
    if (w == window) return handle;
  static int32_t next = 0x10000;
  const int32_t handle = next;
  next += 4;
  Handles()[handle] = window;
  QObject::connect(window, &QObject::destroyed, [handle] { Handles().erase(handle); });
  return handle;
}

QWidget* WindowOfHandle(int32_t handle) {
  const auto it = Handles().find(handle);
  return it == Handles().end() ? nullptr : it->second;
}

}  // namespace vossel
