#include "platform/debug_output.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace braxcfg::platform {
namespace {

std::mutex& sinkMutex() {
    static std::mutex m;
    return m;
}

DebugSink& installedSink() {
    static DebugSink sink;
    return sink;
}

void writeToStderrWhenEnabled(std::string_view text) {
    static const bool enabled = std::getenv("BRAXCFG_DEBUG") != nullptr;
    if (enabled) {
        std::fwrite(text.data(), 1, text.size(), stderr);
        std::fflush(stderr);
    }
}

}  // namespace

void debugOutput(std::string_view text) {
    DebugSink sink;
    {
        std::lock_guard lock(sinkMutex());
        sink = installedSink();
    }
    if (sink) {
        sink(text);
    } else {
        writeToStderrWhenEnabled(text);
    }
}

DebugSink setDebugSink(DebugSink sink) {
    std::lock_guard lock(sinkMutex());
    DebugSink previous = std::move(installedSink());
    installedSink() = std::move(sink);
    return previous;
}

DebugCapture::DebugCapture() {
    previous_ = setDebugSink([this](std::string_view text) { lines_.emplace_back(text); });
}

DebugCapture::~DebugCapture() { setDebugSink(std::move(previous_)); }

std::string DebugCapture::text() const {
    std::string all;
    for (const auto& line : lines_) all += line;
    return all;
}

}  // namespace braxcfg::platform
