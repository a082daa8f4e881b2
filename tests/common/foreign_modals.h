#pragma once
// Acts on the modal windows another library opens: the plug-in loaded with
// dlopen keeps its own modal seam, out of reach of a ModalScript. Each step
// runs on the next modal window that comes up, inside that window's own
// event loop, as a person would act on it; the step is expected to end it.
// A modal window out of turn is closed; opened() lists every one that came.
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

namespace braxcfg::test {

class ForeignModals {
public:
    ForeignModals();
    ~ForeignModals();
    ForeignModals(const ForeignModals&) = delete;
    ForeignModals& operator=(const ForeignModals&) = delete;

    // The next modal window must be of class `className` (its meta-object's
    // name, such as "braxcfg::dialogs::CNewDevice", or "QMessageBox").
    ForeignModals& then(std::string className, std::function<void(QWidget&)> act);

    const std::vector<std::string>& opened() const { return opened_; }

private:
    struct Step {
        std::string className;
        std::function<void(QWidget&)> act;
    };
    void watch();
    void poll();

    QObject context_;
    std::vector<Step> steps_;
    std::size_t next_ = 0;
    std::vector<QPointer<QWidget>> handled_;
    std::vector<std::string> opened_;
};

}  // namespace braxcfg::test
