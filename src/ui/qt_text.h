#pragma once
// The system's texts are narrow strings; Qt's are QString. Every crossing
// goes through these two, so the encoding is decided in one place (UTF-8,
// which leaves plain ASCII texts byte for byte as they were).
#include <QString>
#include <string>

namespace braxcfg::ui {

inline QString toQString(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string toStdString(const QString& text) { return text.toUtf8().toStdString(); }

}  // namespace braxcfg::ui
