// The Qt edge of the system's text: cp1252 both ways, and a typed
// character the store cannot keep refused with a message.
#include "ui/qt_text.h"

#include <gtest/gtest.h>

#include <QLineEdit>

#include "ui/data_exchange.h"
#include "ui/testing/message_box_capture.h"

namespace braxcfg::ui {
namespace {

TEST(QtText, EveryCp1252ByteHasItsCharacterAndComesBack) {
    std::string everyByte;
    for (int b = 0; b < 256; ++b) everyByte += static_cast<char>(b);
    const QString shown = toQString(everyByte);
    ASSERT_EQ(shown.size(), 256);
    EXPECT_EQ(shown.at(0xE4), QChar(0x00E4));
    EXPECT_EQ(shown.at(0x80), QChar(0x20AC)) << "the euro sign, not a C1 control";
    EXPECT_EQ(shown.at(0x81), QChar(0x0081)) << "an undefined byte keeps its number";
    EXPECT_EQ(toStdString(shown), everyByte);
    EXPECT_FALSE(firstUnencodable(shown));
}

// The same name as the tool shows it in UTF-8 and a dialog shows it.
TEST(QtText, TextControlsShowStoreTextAndRefuseWhatItCannotHold) {
    const struct {
        QString typed;
        bool saved;
        std::string stored;
        std::string message;
    } cases[] = {
        {QString::fromUtf8("GPIB0::B\xC3\xA4nch \xE2\x82\xAC"), true, "GPIB0::B\xE4nch \x80", ""},
        // A character beyond 16 bits is named whole, not by its two UTF-16 halves.
        {QString::fromUtf8("B\xC3\xA4nch \xF0\x9F\x98\x80"), false, "before",
         "The character U+1F600 cannot be stored. Please use only characters of the Windows-1252 code page."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        QLineEdit edit;
        std::string value = "before";
        DataExchange exchange;
        exchange.text(&edit, value);
        edit.setText(c.typed);
        const MessageBoxCapture boxes;
        EXPECT_EQ(exchange.save(nullptr), c.saved);
        EXPECT_EQ(value, c.stored);
        EXPECT_EQ(boxes.texts(), c.message.empty() ? std::vector<std::string>{} : std::vector{c.message});
        if (!c.saved) continue;
        edit.clear();
        exchange.load();
        EXPECT_EQ(edit.text(), c.typed) << "loading shows what was saved";
    }
}

}  // namespace
}  // namespace braxcfg::ui
