#include "dialogs/ready_auto_config.h"

#include <gtest/gtest.h>

#include "dialog_test_support.h"

namespace braxcfg::dialogs {
namespace {

TEST(CReadyAutoConfig, ShowsTheInterfaceAndEndsByItsButtons) {
    for (const auto& [button, result] : {std::pair{"&Continue", ui::kIdOk}, std::pair{"Cancel", ui::kIdCancel}}) {
        ui::ModalScript script;
        script.expect<CReadyAutoConfig>([button = button](CReadyAutoConfig& dialog) {
            EXPECT_EQ(test::shownText(dialog, "intfNameLabel"), "GPIB-VXI0");
            test::screenshot(dialog, "ready_auto_config");
            test::press(dialog, button);
        });
        CReadyAutoConfig dialog(nullptr);
        dialog.m_intfName = "GPIB-VXI0";
        EXPECT_EQ(dialog.doModal(), result) << button;
        EXPECT_EQ(test::problems(script), "");
    }
}

}  // namespace
}  // namespace braxcfg::dialogs
