#include "ui/testing/message_box_capture.h"

#include <utility>

#include "ui/dialog_ids.h"

namespace braxcfg::ui {

MessageBoxCapture::MessageBoxCapture() : MessageBoxCapture([](const MessageBoxRequest&) { return kIdOk; }) {}

MessageBoxCapture::MessageBoxCapture(MessageBoxHandler answer) : answer_(std::move(answer)) {
    previous_ = setMessageBoxHandler([this](const MessageBoxRequest& request) {
        requests_.push_back(request);
        return answer_ ? answer_(request) : kIdOk;
    });
}

MessageBoxCapture::~MessageBoxCapture() { setMessageBoxHandler(std::move(previous_)); }

std::vector<std::string> MessageBoxCapture::texts() const {
    std::vector<std::string> result;
    result.reserve(requests_.size());
    for (const MessageBoxRequest& request : requests_) result.push_back(request.text);
    return result;
}

}  // namespace braxcfg::ui
