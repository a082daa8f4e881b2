#pragma once
// A private X server for tests that drive windows as a person does: key
// presses go through the X server (XTEST, by xdotool) to whichever window
// has the focus, so focus, default buttons and mnemonics all take part.
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>

namespace braxcfg::test {

class XSession {
public:
    XSession();  // starts Xvfb on a display number the server picks itself
    ~XSession();
    XSession(const XSession&) = delete;
    XSession& operator=(const XSession&) = delete;

    // Why the tests cannot run here (a missing program, a server that did
    // not start); empty when the session is usable.
    const std::string& unavailable() const { return reason_; }
    const std::string& display() const { return display_; }

    // Waits for the visible window titled exactly `title`, gives it the
    // keyboard and types `keys` (xdotool key names). False when the window
    // did not come within `patience` or `stillWaiting` said to give up.
    bool typeInto(const std::string& title, const std::string& keys,
                  const std::function<bool()>& stillWaiting = [] { return true; },
                  std::chrono::seconds patience = std::chrono::seconds(20)) const;

    // A mnemonic clicks its button a moment after the key (an animated
    // click); a person sees the tick change before going on.
    static void waitForAnimatedClick();

private:
    std::string xdotool(const std::string& args) const;

    pid_t pid_ = -1;
    std::string display_;
    std::string reason_;
};

}  // namespace braxcfg::test
