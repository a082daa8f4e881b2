#pragma once
// The one message-box function of the system. Production shows a
// QMessageBox with an OK button; a test installs a handler that records the
// request (and may answer it) instead of showing anything.
#include <functional>
#include <string>

class QWidget;

namespace braxcfg::ui {

// The icon numbers are the platform's message-box style bits.
enum class MessageIcon : unsigned { None = 0x00, Stop = 0x10, Question = 0x20, Information = 0x40 };

struct MessageBoxRequest {
    QWidget* owner = nullptr;
    std::string text;
    std::string caption;  // empty: the application's name
    MessageIcon icon = MessageIcon::None;
};

inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;

// Shows the box modally and returns the button pressed (kIdOk).
int messageBox(QWidget* owner, const std::string& text, const std::string& caption, MessageIcon icon);

// Replaces the production box (tests); an empty handler restores it.
using MessageBoxHandler = std::function<int(const MessageBoxRequest&)>;
MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler);

}  // namespace braxcfg::ui
