#pragma once
// Scripts the modal runs of a test: "when a dialog of class X opens, do this
// to its widgets (and press a button)". Steps are taken in the order the
// dialogs open; a step that presses a button which opens another dialog
// meets that dialog's step before it returns, so nested runs read in the
// order they happen.
#include <QDialog>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "ui/modal.h"

namespace braxcfg::ui {

class ModalScript {
public:
    // Installs the script as the modal handler until it goes out of scope.
    // A message box asked for while no MessageBoxCapture is installed would
    // wait for a person: it is answered OK and counted as a problem.
    ModalScript();
    ~ModalScript();
    ModalScript(const ModalScript&) = delete;
    ModalScript& operator=(const ModalScript&) = delete;

    // The next dialog to open must be a `Dialog`; `act` works on it while it
    // is shown and is expected to end it (press OK, Cancel, Escape...).
    template <typename Dialog>
    ModalScript& expect(std::function<void(Dialog&)> act) {
        return expectClass(Dialog::staticMetaObject.className(),
                           [act = std::move(act)](QDialog& dialog) { act(*qobject_cast<Dialog*>(&dialog)); });
    }
    // As above, by class name, for a step that needs only QDialog.
    ModalScript& expectClass(std::string className, std::function<void(QDialog&)> act);

    // Everything that went against the script: a dialog that opened with no
    // step left, a dialog of another class than its step named, a dialog
    // its step left open, steps never reached. Empty when all went as
    // scripted.
    std::vector<std::string> problems() const;
    // Class names of the dialogs that opened, in order.
    const std::vector<std::string>& opened() const { return opened_; }

private:
    struct Step {
        std::string className;
        std::function<void(QDialog&)> act;
    };
    int run(QDialog& dialog);

    std::deque<Step> steps_;
    std::vector<std::string> opened_;
    std::vector<std::string> problems_;
    ModalHandler previous_;
    bool guardsMessageBoxes_ = false;
};

}  // namespace braxcfg::ui
