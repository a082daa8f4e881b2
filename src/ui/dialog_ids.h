#pragma once
// The results a modal run ends with, numbered as the platform's dialog
// command identifiers, so that "the run ended with OK" reads the same
// everywhere (dialogs, message boxes, callers).
namespace braxcfg::ui {

inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;

}  // namespace braxcfg::ui
