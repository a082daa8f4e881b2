#include "ui/host_owner.h"

#include <QApplication>
#include <QGuiApplication>
#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <cstdlib>

namespace braxcfg::ui {
namespace {

// The parent that dialogs of an export get in place of the host's window.
// The QPointer guards against a host window that went away meanwhile.
class HostStandIn : public QWidget {
public:
    explicit HostStandIn(QWindow* host) : host_(host) {
        // Dialogs centre themselves on their parent: give the stand-in the
        // host window's place on the screen.
        setGeometry(host->geometry());
    }
    QWindow* host() const { return host_; }

private:
    QPointer<QWindow> host_;
};

}  // namespace

bool displayAvailable() {
#if defined(_WIN32) || defined(__APPLE__)
    return true;
#else
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return true;
    }
    return false;
#endif
}

bool ensureApplication() {
    if (QCoreApplication::instance() != nullptr)
        return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
    if (!displayAvailable()) return false;
    // QApplication keeps references to argc and argv: both must outlive it.
    static int argc = 1;
    static char name[] = "braxcfg";
    static char* argv[] = {name, nullptr};
    static QApplication* created = new QApplication(argc, argv);
    return created != nullptr;
}

HostOwner::HostOwner(void* nativeHandle) {
    if (nativeHandle == nullptr || qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) return;
    const auto id = reinterpret_cast<WId>(nativeHandle);
    // A host built on the same Qt hands over one of this process's own
    // windows: that window is the owner as it is, on every platform, even
    // where foreign windows cannot be wrapped.
    for (QWindow* window : QGuiApplication::allWindows())
        if (window->handle() != nullptr && window->winId() == id) hostWindow_ = window;
    if (hostWindow_ == nullptr) {
        foreign_.reset(QWindow::fromWinId(id));
        hostWindow_ = foreign_.get();
    }
    makeStandIn();
}

HostOwner::HostOwner(QWindow* window) : hostWindow_(window) { makeStandIn(); }

HostOwner::~HostOwner() = default;

void HostOwner::makeStandIn() {
    if (hostWindow_ == nullptr) return;
    standIn_ = std::make_unique<HostStandIn>(hostWindow_);
}

QWidget* HostOwner::widget() const { return standIn_.get(); }

void attachToHostWindow(QWidget& window) {
    const auto* standIn = dynamic_cast<const HostStandIn*>(window.parentWidget());
    if (standIn == nullptr || !window.isWindow()) return;
    QWindow* host = standIn->host();
    if (host == nullptr) return;
    window.createWinId();
    if (QWindow* handle = window.windowHandle()) handle->setTransientParent(host);
}

}  // namespace braxcfg::ui
