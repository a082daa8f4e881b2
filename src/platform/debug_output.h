#pragma once
// The debugger-output channel. Diagnostics that the user never sees (a key
// that could not be created, a logged parse error) go here; stderr when
// BRAXCFG_DEBUG is set, otherwise nowhere, unless a capture is installed.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace braxcfg::platform {

// Writes one piece of text as given (callers include their own line end).
void debugOutput(std::string_view text);

// Replaces the sink for the whole process; an empty function restores the
// default (stderr when BRAXCFG_DEBUG is set). Returns the previous sink.
using DebugSink = std::function<void(std::string_view)>;
DebugSink setDebugSink(DebugSink sink);

// Collects every debug write while it lives (tests).
class DebugCapture {
public:
    DebugCapture();
    ~DebugCapture();
    DebugCapture(const DebugCapture&) = delete;
    DebugCapture& operator=(const DebugCapture&) = delete;
    const std::vector<std::string>& lines() const { return lines_; }
    std::string text() const;
    void clear() { lines_.clear(); }

private:
    std::vector<std::string> lines_;
    DebugSink previous_;
};

}  // namespace braxcfg::platform
