#pragma once
// What the dialog tests share: pressing buttons by the text the user sees,
// reading the texts a dialog shows, and saving its screenshot.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <string>
#include <vector>

#include "temp_store.h"
#include "ui/testing/message_box_capture.h"
#include "ui/testing/modal_script.h"
#include "ui/qt_text.h"
#include "ui/screenshot.h"

namespace braxcfg::test {

// The buttons showing `text` (with its "&" mnemonic), in creation order.
inline std::vector<QAbstractButton*> buttonsLabelled(QWidget& dialog, const std::string& text) {
    std::vector<QAbstractButton*> found;
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        if (ui::toStdString(button->text()) == text) found.push_back(button);
    return found;
}

// Clicks the button as the user would; a missing or disabled one fails the
// test (a click on a disabled button would silently do nothing).
inline void press(QWidget& dialog, const std::string& text) {
    const auto found = buttonsLabelled(dialog, text);
    ASSERT_FALSE(found.empty()) << "no button \"" << text << "\"";
    EXPECT_TRUE(found[0]->isEnabled()) << "\"" << text << "\" is disabled";
    QTest::mouseClick(found[0], Qt::LeftButton);
}

// The text of the static field or edit field named `objectName`.
inline std::string shownText(QWidget& dialog, const char* objectName) {
    if (auto* label = dialog.findChild<QLabel*>(objectName)) return ui::toStdString(label->text());
    if (auto* edit = dialog.findChild<QLineEdit*>(objectName)) return ui::toStdString(edit->text());
    return "<no " + std::string(objectName) + ">";
}

// Saves the dialog's PNG below the build tree for a person to look at.
inline void screenshot(QWidget& dialog, const std::string& name) {
    const std::string path = testOutputDir("screenshots") + "/" + name + ".png";
    EXPECT_TRUE(ui::saveScreenshot(dialog, path)) << path;
}

// Everything that went against the script, for a failure message.
inline std::string problems(const ui::ModalScript& script) {
    std::string all;
    for (const std::string& problem : script.problems()) all += problem + "\n";
    return all;
}

// A template's visible static texts.
inline std::vector<std::string> templateLabels(QDialog& dialog) {
    std::vector<std::string> texts;
    for (QLabel* label : dialog.findChildren<QLabel*>())
        if (label->isVisibleTo(&dialog)) texts.push_back(ui::toStdString(label->text()));
    return texts;
}

}  // namespace braxcfg::test
