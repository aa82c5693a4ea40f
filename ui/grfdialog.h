// What both windows' Open commands give their file dialog.
#pragma once

inline constexpr const char kOpenTitle[] = "Open a GRF file...";
inline constexpr const char kGrfFilter[] =
    "Transport Tycoon GRF file (*.grf)|*.grf|All files (*.*)|*.*";
