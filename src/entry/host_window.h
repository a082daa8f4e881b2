#pragma once
// The host's window as the exports receive it: an opaque native handle,
// null for "no owner". Kept as it is until a dialog opens, so that calls
// that show nothing never start the GUI.
namespace braxcfg::entry {

class HostWindow {
public:
    HostWindow() = default;
    explicit HostWindow(void* nativeHandle) : handle_(nativeHandle) {}
    void* nativeHandle() const { return handle_; }
    bool isNull() const { return handle_ == nullptr; }

private:
    void* handle_ = nullptr;
};

}  // namespace braxcfg::entry
