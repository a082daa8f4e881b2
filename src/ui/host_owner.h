#pragma once
// Bringing up the GUI inside a host that gave the plug-in nothing but a
// native window handle.
#include <memory>

class QWidget;
class QWindow;

namespace braxcfg::ui {

// True when windows can be shown: a Qt platform is named, or a display is
// there to connect to. Without one, creating a QApplication would abort.
bool displayAvailable();

// Makes sure the process has a QApplication before a dialog opens. A host
// built on Qt Widgets already has one and it is used as it is; otherwise
// one is created here and kept for the rest of the process (hosts may hold
// on to Qt objects after the export returns). False when no dialog can be
// shown: no display to show it on, or the host runs a Qt application object
// without widgets. The caller then opens nothing.
bool ensureApplication();

// The host's window as the owner of the dialogs opened during one export.
// widget() is the parent to construct those dialogs with: a stand-in that is
// never shown; the modal run and the message box make each top-level window
// whose parent it is transient for the host's window, so the dialog stays
// above the host and is centred on it. Lives on the stack of the export,
// longer than every dialog parented to it.
class HostOwner {
public:
    // `nativeHandle` null: no owner, widget() is null. The handle of a
    // window of this process is that window; another is wrapped as a
    // foreign window, and a platform that cannot wrap those gives no owner.
    explicit HostOwner(void* nativeHandle);
    // A window of this process stands for the host (the tool, tests).
    explicit HostOwner(QWindow* window);
    ~HostOwner();
    HostOwner(const HostOwner&) = delete;
    HostOwner& operator=(const HostOwner&) = delete;

    QWidget* widget() const;
    QWindow* hostWindow() const { return hostWindow_; }

private:
    void makeStandIn();

    std::unique_ptr<QWindow> foreign_;  // wraps the native handle, when there is one
    QWindow* hostWindow_ = nullptr;
    std::unique_ptr<QWidget> standIn_;
};

// Called by the modal run and the message box just before `window` shows:
// when its parent is a HostOwner's stand-in, the host's window becomes its
// transient parent. Any other window is left to Qt's own parenting.
void attachToHostWindow(QWidget& window);

}  // namespace braxcfg::ui
