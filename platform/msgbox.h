// The modal message box of the windows. Tests put a recorder in its place.
#pragma once

#include <functional>
#include <string>

namespace vossel {

enum class MsgBoxIcon { None, Exclamation, Information };

// The title a box shows when its caller gives none: the application's title.
inline constexpr const char kMsgBoxTitle[] = "Vossel";

// Shows `text` with an OK button and returns when the user has closed the box. No other window
// takes input meanwhile. An empty title shows kMsgBoxTitle.
void MsgBox(const std::string& text, const std::string& title = "",
            MsgBoxIcon icon = MsgBoxIcon::None);

// Receives what would have been shown, the title already completed. An empty hook brings the real
// box back.
using MsgBoxHook =
    std::function<void(const std::string& text, const std::string& title, MsgBoxIcon icon)>;
void SetMsgBoxHook(MsgBoxHook hook);

}  // namespace vossel
