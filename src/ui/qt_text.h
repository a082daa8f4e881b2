#pragma once
// The system's texts are narrow cp1252 strings, as the store keeps them;
// Qt's are QString. Every crossing goes through these, so the code page is
// decided in one place (platform/cp1252.h).
#include <QString>
#include <optional>
#include <string>
#include <string_view>

namespace braxcfg::ui {

// cp1252 text as Qt shows it; every byte has its character.
QString toQString(std::string_view text);

// The way back for text that cp1252 can hold (what toQString gave, the
// system's own captions). A character it cannot hold becomes '?': use
// firstUnencodable() first where a person typed the text.
std::string toStdString(const QString& text);

// The first character of `text` that cp1252 cannot hold, as "U+4E2D";
// nothing when every one fits.
std::optional<std::string> firstUnencodable(const QString& text);

}  // namespace braxcfg::ui
