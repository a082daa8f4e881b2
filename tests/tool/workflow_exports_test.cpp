// The interface workflow as a host meets it: the plug-in loaded with
// dlopen, called through its exports with a window of the host as owner,
// its dialogs driven through their own event loops as a person would.
#include <gtest/gtest.h>

#include <QDialog>
#include <QWidget>
#include <QWindow>

#include "braxcfg/braxcfg.h"
#include "foreign_modals.h"
#include "plugin_store.h"
#include "store_builder.h"
#include "tree_text.h"

namespace braxcfg::test {
namespace {

class WorkflowExports : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(pluginStore().plugin.loaded()) << pluginStore().plugin.error();
        clearInterfaces();
        host_.show();
    }
    template <typename Fn>
    Fn* exported(const char* name) {
        return pluginStore().plugin.get<Fn>(name);
    }
    HWND hostHandle() { return reinterpret_cast<HWND>(host_.winId()); }

    // Acts on a plug-in dialog after checking that the host's window owns it.
    std::function<void(QWidget&)> owned(std::function<void(QWidget&)> act) {
        return [this, act](QWidget& dialog) {
            EXPECT_EQ(dialog.windowHandle()->transientParent(), host_.windowHandle());
            act(dialog);
        };
    }

    QWidget host_;
};

TEST_F(WorkflowExports, EditOpensNothingForTypesWithoutADeviceList) {
    for (const char* type : {"ASRL", "USB", "PXI", "RSIB", "gpib"}) {
        SCOPED_TRACE(type);
        clearInterfaces();
        putInterface("INTF0", std::string(type) + "0", type);
        const std::string before = treeText("INTF0");
        ForeignModals modals;  // no step: any dialog would be a problem
        exported<void(HWND, const char*)>("editVisaIntf")(hostHandle(), "INTF0");
        EXPECT_EQ(modals.opened(), std::vector<std::string>{});
        EXPECT_EQ(treeText("INTF0"), before);
    }
}

TEST_F(WorkflowExports, EditOpensTheListThatSuitsTheTypeOwnedByTheHost) {
    const struct { const char* type; const char* list; } cases[] = {
        {"GPIB", "braxcfg::dialogs::CShowDevices"},
        {"VXI", "braxcfg::dialogs::CShowDevices"},
        {"GPIB-VXI", "braxcfg::dialogs::CShowDevices"},
        {"TCPIP", "braxcfg::tcpip::tcpipshowdev"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.type);
        clearInterfaces();
        // With its flag stored, so that the list's start-up has nothing to write.
        putTree("[INTF0]\n\"VISAName\"=\"" + std::string(c.type) + "0\"\n\"VISAIntfType\"=\"" + c.type +
                "\"\n\"VISAAutoConfig\"=hex:00\n");
        const std::string before = treeText("INTF0");
        ForeignModals modals;
        modals.then(c.list, owned([](QWidget& list) { qobject_cast<QDialog*>(&list)->reject(); }));
        exported<void(HWND, const char*)>("editVisaIntf")(hostHandle(), "INTF0");
        EXPECT_EQ(modals.problems(), std::vector<std::string>{});
        EXPECT_EQ(modals.opened(), std::vector<std::string>{c.list});
        EXPECT_EQ(treeText("INTF0"), before) << "Cancel wrote to the store";
    }
}

TEST_F(WorkflowExports, SetUpShowsNothingAndLeavesASetUpInterfaceAlone) {
    putTree("[INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n\"VISAAutoConfigDriver\"=\"AUTOCF\"\n"
            "\"VISAAutoConfig\"=hex:00\n");
    putTree("[INTF1]\n\"VISAName\"=\"USB0\"\n\"VISAIntfType\"=\"USB\"\n");
    const std::string before = treeText("INTF0");
    ForeignModals modals;
    auto* setup = exported<void(HWND, const char*)>("setupVisaIntf");
    setup(hostHandle(), "INTF0");
    setup(hostHandle(), "INTF1");
    EXPECT_EQ(modals.opened(), std::vector<std::string>{});
    EXPECT_EQ(treeText("INTF0"), before);
    EXPECT_NE(treeText("INTF1").find("\"VISAAutoConfig\"=hex:01"), std::string::npos);
}

}  // namespace
}  // namespace braxcfg::test
