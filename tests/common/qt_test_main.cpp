// One QApplication for the whole run; without a display the widget tests
// run on the offscreen platform.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

namespace {
QtMessageHandler standardHandler = nullptr;
}  // namespace

int main(int argc, char** argv) {
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // The offscreen platform warns about every window it sizes; that noise
    // would hide the warnings that matter.
    standardHandler = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& where, const QString& text) {
        if (!text.contains(QLatin1String("does not support propagateSizeHints"))) standardHandler(type, where, text);
    });
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
