// The widget tests need one QApplication for the whole run; without a
// display they run on the offscreen platform.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>

namespace {

QtMessageHandler standardHandler = nullptr;

// The offscreen platform warns about every window it sizes; that noise
// would hide the warnings that matter.
void filterMessages(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (message.contains(QLatin1String("does not support propagateSizeHints"))) return;
    if (standardHandler != nullptr) standardHandler(type, context, message);
}

}  // namespace

int main(int argc, char** argv) {
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    standardHandler = qInstallMessageHandler(filterMessages);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
