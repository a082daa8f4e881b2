#include "dialogs/ready_auto_config.h"

#include <gtest/gtest.h>

#include <functional>

#include "dialog_test_support.h"
#include "ui/modal_script.h"

namespace braxcfg::dialogs {
namespace {

using test::labelText;
using test::press;
using ui::kIdCancel;
using ui::kIdOk;
using ui::ModalScript;

TEST(CReadyAutoConfig, ShowsTheInterfaceAndAsksToContinue) {
    const std::string warning =
        "Make sure all instruments on this interface are turned on and ready to go. This operation will touch "
        "each instrument on this interface.\n\nThis operation may take several seconds.\n\nOn a remote GPIB "
        "interface over the LAN, this operation may take longer.";
    const std::pair<std::function<void(QDialog&)>, int> cases[] = {
        {[](QDialog& d) { press(d, "&Continue"); }, kIdOk},
        {[](QDialog& d) { QTest::keyClick(&d, Qt::Key_Return); }, kIdOk},
        {[](QDialog& d) { press(d, "Cancel"); }, kIdCancel},
        {[](QDialog& d) { QTest::keyClick(&d, Qt::Key_Escape); }, kIdCancel},
    };
    for (const auto& [close, result] : cases) {
        ModalScript script;
        script.expect<CReadyAutoConfig>([&close = close, &warning](CReadyAutoConfig& dialog) {
            EXPECT_EQ(labelText(dialog, "intfNameLabel"), "GPIB-VXI0");
            EXPECT_EQ(labelText(dialog, "warningLabel"), warning);
            test::screenshot(dialog, "ready_auto_config");
            close(dialog);
        });
        CReadyAutoConfig dialog(nullptr);
        dialog.m_intfName = "GPIB-VXI0";
        EXPECT_EQ(dialog.doModal(), result);
        EXPECT_TRUE(script.problems().empty());
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
