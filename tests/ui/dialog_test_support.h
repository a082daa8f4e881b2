#pragma once
// What the dialog tests share: pressing buttons by the text the user sees,
// reading the texts a dialog shows, and saving its screenshot.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QWidget>
#include <string>
#include <vector>

#include "temp_store.h"
#include "ui/qt_text.h"
#include "ui/screenshot.h"

namespace braxcfg::test {

// The buttons whose text (with its "&" mnemonic) is `text`, in the order
// the template creates them.
inline std::vector<QAbstractButton*> buttonsLabelled(QWidget& dialog, const std::string& text) {
    std::vector<QAbstractButton*> found;
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        if (ui::toStdString(button->text()) == text) found.push_back(button);
    return found;
}

inline QAbstractButton* buttonLabelled(QWidget& dialog, const std::string& text) {
    const auto found = buttonsLabelled(dialog, text);
    return found.empty() ? nullptr : found.front();
}

// Clicks the button as the user would; a missing or disabled one fails
// the test (a click on a disabled button would silently do nothing).
inline void press(QWidget& dialog, const std::string& text) {
    QAbstractButton* button = buttonLabelled(dialog, text);
    if (button == nullptr) {
        ADD_FAILURE() << "no button \"" << text << "\"";
        return;
    }
    EXPECT_TRUE(button->isEnabled()) << "\"" << text << "\" is disabled";
    QTest::mouseClick(button, Qt::LeftButton);
}

// Texts of the visible static fields, top to bottom as created.
inline std::vector<std::string> shownTexts(QWidget& dialog) {
    std::vector<std::string> texts;
    for (QLabel* label : dialog.findChildren<QLabel*>())
        if (label->isVisibleTo(&dialog)) texts.push_back(ui::toStdString(label->text()));
    return texts;
}

inline std::string labelText(QWidget& dialog, const char* objectName) {
    auto* label = dialog.findChild<QLabel*>(objectName);
    return label != nullptr ? ui::toStdString(label->text()) : "<no " + std::string(objectName) + ">";
}

// Saves the dialog's PNG below the build tree for a person to look at.
inline void screenshot(QWidget& dialog, const std::string& name) {
    const std::string path = testOutputDir("screenshots") + "/" + name + ".png";
    EXPECT_TRUE(ui::saveScreenshot(dialog, path)) << path;
}

}  // namespace braxcfg::test
