#include "ui/qt_text.h"

#include <QList>
#include <cstdio>

#include "platform/cp1252.h"

namespace braxcfg::ui {

QString toQString(std::string_view text) {
    QString out(static_cast<qsizetype>(text.size()), Qt::Uninitialized);
    for (std::size_t i = 0; i < text.size(); ++i)
        out[static_cast<qsizetype>(i)] =
            QChar(static_cast<char16_t>(platform::cp1252ToUnicode(static_cast<unsigned char>(text[i]))));
    return out;
}

std::string toStdString(const QString& text) {
    std::string out;
    out.reserve(static_cast<std::size_t>(text.size()));
    for (const char32_t cp : text.toUcs4()) out += static_cast<char>(platform::unicodeToCp1252(cp).value_or(static_cast<unsigned char>('?')));
    return out;
}

std::optional<std::string> firstUnencodable(const QString& text) {
    for (const char32_t cp : text.toUcs4()) {
        if (platform::unicodeToCp1252(cp)) continue;
        char name[16];
        std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(cp));
        return std::string(name);
    }
    return std::nullopt;
}

}  // namespace braxcfg::ui
