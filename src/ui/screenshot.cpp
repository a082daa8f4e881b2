#include "ui/screenshot.h"

#include <QLayout>
#include <QPixmap>
#include <QWidget>

#include "ui/qt_text.h"

namespace braxcfg::ui {

bool saveScreenshot(QWidget& widget, const std::string& path) {
    if (!widget.isVisible()) {
        widget.ensurePolished();
        if (QLayout* layout = widget.layout()) layout->activate();
        widget.adjustSize();
    }
    return widget.grab().save(toQString(path), "PNG");
}

}  // namespace braxcfg::ui
