#pragma once
// A PNG of a dialog as it looks now, so that a person can check its texts
// and layout without running it (tests, the tool's --screenshot).
#include <string>

class QWidget;

namespace braxcfg::ui {

// Renders `widget` (laid out first if it was never shown) into a PNG file
// at `path`. False when the file cannot be written.
bool saveScreenshot(QWidget& widget, const std::string& path);

}  // namespace braxcfg::ui
