#pragma once
// The one message-box function of the system. Production shows a
// QMessageBox with an OK button; a test installs a handler that records the
// request (and may answer it) instead of showing anything.
#include <functional>
#include <string>

#include "ui/dialog_ids.h"

class QWidget;

namespace braxcfg::ui {

// The icon numbers are the platform's message-box style bits.
enum class MessageIcon : unsigned { None = 0x00, Stop = 0x10, Question = 0x20, Exclamation = 0x30, Information = 0x40 };

// The caption a box gets when its caller passes none: the plug-in's name.
inline constexpr const char* kDefaultCaption = "braxcfg";

struct MessageBoxRequest {
    QWidget* owner = nullptr;
    std::string text;
    std::string caption;  // empty: the application's name
    MessageIcon icon = MessageIcon::None;
};

// Shows the box modally and returns the button pressed (kIdOk). Without a
// QApplication (a headless host) the text goes to the debug output instead
// and the answer is kIdOk.
int messageBox(QWidget* owner, const std::string& text, const std::string& caption, MessageIcon icon);

// Replaces the production box (MessageBoxCapture in ui/testing/); an empty
// handler restores it.
// Returns the handler that was installed before.
using MessageBoxHandler = std::function<int(const MessageBoxRequest&)>;
MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler);

}  // namespace braxcfg::ui
