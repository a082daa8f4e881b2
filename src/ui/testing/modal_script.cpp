#include "ui/testing/modal_script.h"

#include <utility>

#include "ui/dialog_ids.h"
#include "ui/message_box.h"

namespace braxcfg::ui {

ModalScript::ModalScript() {
    previous_ = setModalHandler([this](QDialog& dialog) { return run(dialog); });
    MessageBoxHandler boxes = setMessageBoxHandler({});
    guardsMessageBoxes_ = !boxes;
    if (guardsMessageBoxes_) {
        boxes = [this](const MessageBoxRequest& request) {
            problems_.push_back("message box \"" + request.text + "\" shown with no MessageBoxCapture");
            return kIdOk;
        };
    }
    setMessageBoxHandler(std::move(boxes));
}

ModalScript::~ModalScript() {
    setModalHandler(std::move(previous_));
    if (guardsMessageBoxes_) setMessageBoxHandler({});
}

ModalScript& ModalScript::expectClass(std::string className, std::function<void(QDialog&)> act) {
    steps_.push_back({std::move(className), std::move(act)});
    return *this;
}

int ModalScript::run(QDialog& dialog) {
    const std::string className = dialog.metaObject()->className();
    opened_.push_back(className);
    if (steps_.empty()) {
        problems_.push_back(className + " opened, but no step was left for it");
        return kIdCancel;
    }
    Step step = std::move(steps_.front());
    steps_.pop_front();
    if (!dialog.inherits(step.className.c_str())) {
        problems_.push_back(className + " opened where " + step.className + " was expected");
        return kIdCancel;
    }
    bool ended = false;
    int result = kIdCancel;
    const auto connection = QObject::connect(&dialog, &QDialog::finished, [&](int code) {
        ended = true;
        result = code;
    });
    dialog.show();
    step.act(dialog);
    QObject::disconnect(connection);
    if (!ended) {
        problems_.push_back(className + " was still open after its step");
        dialog.hide();
    }
    return result;
}

std::vector<std::string> ModalScript::problems() const {
    std::vector<std::string> all = problems_;
    for (const Step& step : steps_) all.push_back(step.className + " was expected but never opened");
    return all;
}

}  // namespace braxcfg::ui
