#include "tcpip/responsive_probe.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <atomic>
#include <thread>

#include "visacore/probe_timeout.h"
#include "visacore/visa_api.h"

namespace braxcfg::tcpip {
namespace {

bool isPersonsInput(QEvent::Type type) {
    switch (type) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::Shortcut:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
            return true;
        default:
            return false;
    }
}

// Installed on the application while the probe runs.
class InputHold : public QObject {
public:
    explicit InputHold(const visa::CancelToken& cancel) : cancel_(cancel) { qApp->installEventFilter(this); }
    ~InputHold() override { qApp->removeEventFilter(this); }

    std::vector<QPointer<QWidget>> closeRequests() const { return closeRequests_; }

protected:
    bool eventFilter(QObject* target, QEvent* event) override {
        // The window system's events reach a top-level window first, which
        // hands them on to its widgets: they are judged there.
        if (!target->isWidgetType()) return false;
        auto* widget = static_cast<QWidget*>(target);
        if (event->type() == QEvent::Close) {
            event->ignore();
            requestClose(widget);
            return true;
        }
        if (!isPersonsInput(event->type())) return false;
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            requestClose(widget->window());
        return true;
    }

private:
    void requestClose(QWidget* window) {
        cancel_.cancel();
        for (const QPointer<QWidget>& known : closeRequests_)
            if (known == window) return;
        closeRequests_.emplace_back(window);
    }

    const visa::CancelToken& cancel_;
    std::vector<QPointer<QWidget>> closeRequests_;
};

}  // namespace

ResponsiveProbeResult probeWhileResponsive(visa::ViSession rm, const std::string& resource,
                                           visa::ProbeControl control) {
    visa::CancelToken cancel;
    control.cancel = &cancel;
    ResponsiveProbeResult result;
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
        result.status = visa::viProbeRsrc(rm, visa::kResourceProbeSelector, resource.c_str(), control);
        return result;
    }
    // The setting is read here: the store belongs to this thread.
    control.timeout = visa::effectiveProbeTimeout(control.timeout);
    const InputHold hold(cancel);
    QObject wake;
    std::atomic<bool> done{false};
    std::thread worker([&] {
        result.status = visa::viProbeRsrc(rm, visa::kResourceProbeSelector, resource.c_str(), control);
        done.store(true, std::memory_order_release);
        // Wakes the loop below, which may be waiting for an event.
        QMetaObject::invokeMethod(&wake, [] {}, Qt::QueuedConnection);
    });
    while (!done.load(std::memory_order_acquire)) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    worker.join();
    result.closeRequests = hold.closeRequests();
    return result;
}

}  // namespace braxcfg::tcpip
