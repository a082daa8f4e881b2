#include "foreign_modals.h"

#include <QApplication>
#include <QTimer>
#include <algorithm>

namespace braxcfg::test {

ForeignModals::ForeignModals() { watch(); }

ForeignModals::~ForeignModals() = default;

ForeignModals& ForeignModals::then(std::string className, std::function<void(QWidget&)> act) {
    steps_.push_back({std::move(className), std::move(act)});
    return *this;
}

// Looks again once the event loop has run a little; the timer belongs to
// context_, so nothing fires after the driver is gone.
void ForeignModals::watch() { QTimer::singleShot(5, &context_, [this] { poll(); }); }

void ForeignModals::poll() {
    // The next look is due before the step runs: the step may open a nested
    // modal window whose event loop must meet the driver too.
    watch();
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr) return;
    if (std::any_of(handled_.begin(), handled_.end(), [modal](const QPointer<QWidget>& w) { return w == modal; }))
        return;
    handled_.emplace_back(modal);
    const std::string className = modal->metaObject()->className();
    opened_.push_back(className);
    if (next_ >= steps_.size() || steps_[next_].className != className) {
        modal->close();
        return;
    }
    steps_[next_++].act(*modal);
}

}  // namespace braxcfg::test
