#pragma once
// Message boxes recorded instead of shown: for tests, and for the tool's
// commands that print what a dialog would have said.
#include <string>
#include <vector>

#include "ui/message_box.h"

namespace braxcfg::ui {

// Records every message box asked for while it lives, and answers each
// with `answer` (kIdOk unless told otherwise) without showing anything.
class MessageBoxCapture {
public:
    MessageBoxCapture();
    explicit MessageBoxCapture(MessageBoxHandler answer);
    ~MessageBoxCapture();
    MessageBoxCapture(const MessageBoxCapture&) = delete;
    MessageBoxCapture& operator=(const MessageBoxCapture&) = delete;

    const std::vector<MessageBoxRequest>& requests() const { return requests_; }
    // Just the texts, in the order the boxes were asked for.
    std::vector<std::string> texts() const;

private:
    std::vector<MessageBoxRequest> requests_;
    MessageBoxHandler answer_;
    MessageBoxHandler previous_;
};

}  // namespace braxcfg::ui
