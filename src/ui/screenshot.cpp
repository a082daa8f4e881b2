#include "ui/screenshot.h"

#include <QLayout>
#include <QFile>
#include <QPixmap>
#include <QWidget>

namespace braxcfg::ui {

bool saveScreenshot(QWidget& widget, const std::string& path) {
    if (!widget.isVisible()) {
        widget.ensurePolished();
        if (QLayout* layout = widget.layout()) layout->activate();
        widget.adjustSize();
    }
    // A file name is the system's, not store text.
    return widget.grab().save(QFile::decodeName(QByteArray::fromStdString(path)), "PNG");
}

}  // namespace braxcfg::ui
