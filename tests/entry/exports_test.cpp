// The plug-in as a host sees it: loaded with dlopen, called through its C
// exports with a window of the host as owner, reading a store that this
// test process writes; its dialogs are driven through their own event
// loops as a person would.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <QDialog>
#include <QWidget>
#include <QWindow>
#include <cstdio>
#include <memory>
#include <set>

#include "braxcfg/braxcfg.h"
#include "foreign_modals.h"
#include "store_builder.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::test {
namespace {

// One store for the whole program: the plug-in opens its store once, from
// BRAXCFG_STORE, as it does in a host.
class Exports : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        store_ = new TempStore();
        setenv("BRAXCFG_STORE", store_->path().c_str(), 1);
        handle_ = dlopen(BRAXCFG_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle_, nullptr) << dlerror();
        putDword(underProduct(), "LinkbaseVisaPresent", 1);
    }
    static void TearDownTestSuite() { delete store_; }
    void SetUp() override { host_.show(); }

    template <typename Fn>
    static Fn* exported(const char* name) {
        auto* fn = reinterpret_cast<Fn*>(dlsym(handle_, name));
        EXPECT_NE(fn, nullptr) << name;
        return fn;
    }
    void call(const char* name, const char* intf) {
        exported<void(HWND, const char*)>(name)(reinterpret_cast<HWND>(host_.winId()), intf);
    }

    static inline TempStore* store_ = nullptr;
    static inline void* handle_ = nullptr;
    QWidget host_;
};

// The three predicates, and Edit opening the list that suits the type,
// owned by the host's window, only where the interface is editable (the
// types without a list share one row, ASRL; the type words' codes are the
// store's test). A null VISA name: no interface key; a null value name: not
// set up; a null list: Edit opens nothing. What Cancel in a list leaves is
// the lists' own tests'.
TEST_F(Exports, PredicatesAnswerFromTheStoreAndEditFollowsThem) {
    const char* const gpibList = "braxcfg::dialogs::CShowDevices";
    const struct { const char *intf, *visaName, *typeWord, *driverValueName; int valid, setUp, editable;
                   const char* list; } cases[] = {
        {"INTF0", nullptr, nullptr, nullptr, 0, 0, 0, nullptr},
        {"INTF1", "", "GPIB", "VISAAutoConfigDriver", 0, 0, 0, nullptr},
        {"INTF2", "GPIB0", "GPIB", nullptr, 1, 0, 1, gpibList},
        {"INTF3", "GPIB1", "gpib", nullptr, 1, 0, 0, nullptr},
        {"INTF4", "GPIB2", "GPIB", "VISAAutoConfigDriver", 1, 1, 1, gpibList},
        {"INTF5", "GPIB3", "GPIB", "visaautoconfigdriver", 1, 0, 1, gpibList},
        {"INTF6", "VXI0", "VXI", nullptr, 1, 0, 1, gpibList},
        {"INTF7", "GPIB-VXI0", "GPIB-VXI", nullptr, 1, 0, 1, gpibList},
        {"INTF8", "TCPIP0", "TCPIP", nullptr, 1, 0, 1, "braxcfg::tcpip::tcpipshowdev"},
        {"INTF9", "ASRL1", "ASRL", nullptr, 1, 0, 0, nullptr},
    };
    for (const auto& c : cases) {
        if (c.visaName == nullptr) continue;
        putInterface(c.intf, c.visaName, c.typeWord);
        if (c.driverValueName) putString(underProduct(c.intf), c.driverValueName, "");
    }
    for (const auto& c : cases) {
        SCOPED_TRACE(c.intf);
        EXPECT_EQ(exported<int(const char*)>("isValidVisaIntf")(c.intf), c.valid);
        EXPECT_EQ(exported<int(const char*)>("isVisaIntfSetup")(c.intf), c.setUp);
        EXPECT_EQ(exported<int(const char*)>("isVisaIntfEditable")(c.intf), c.editable);
        ForeignModals modals;
        if (c.list) modals.then(c.list, [&](QWidget& list) {
            EXPECT_EQ(list.windowHandle()->transientParent(), host_.windowHandle());
            qobject_cast<QDialog*>(&list)->reject();
        });
        call("editVisaIntf", c.intf);
        EXPECT_EQ(modals.opened(), c.list ? std::vector<std::string>{c.list} : std::vector<std::string>{});
    }
    EXPECT_EQ(exported<int(const char*)>("isValidVisaIntf")(nullptr), 0);
    // Without the product's VISA nothing is editable.
    putDword(underProduct(), "LinkbaseVisaPresent", 0);
    EXPECT_EQ(exported<int(const char*)>("isVisaIntfEditable")("INTF2"), 0);
    putDword(underProduct(), "LinkbaseVisaPresent", 1);
}

// What set-up writes for each type, and that it leaves a set-up interface
// alone, is the tool's set-up fixture's; here it is called with a window.
TEST_F(Exports, StartAndSetUpShowNothing) {
    putTree("[INTF21]\n\"VISAName\"=\"USB0\"\n\"VISAIntfType\"=\"USB\"\n");
    const std::string before = treeText("");
    ForeignModals modals;
    for (const char* intf : {"INTF21", "", static_cast<const char*>(nullptr)})
        exported<void(const char*)>("doVisaStartStuff")(intf);
    EXPECT_EQ(treeText(""), before) << "nothing to prepare";
    call("setupVisaIntf", "INTF21");
    EXPECT_EQ(modals.opened(), std::vector<std::string>{});
    EXPECT_NE(treeText("INTF21").find("\"VISAAutoConfig\"=hex:01"), std::string::npos);
}

TEST(PluginSymbols, OnlyTheSevenExportsAreVisible) {
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(
        popen("nm -D --defined-only " BRAXCFG_PLUGIN_PATH " | awk '$2 == \"T\" { print $3 }'", "r"), pclose);
    ASSERT_NE(pipe, nullptr);
    std::set<std::string> functions;
    for (char name[400]; std::fscanf(pipe.get(), "%399s", name) == 1;) functions.insert(name);
    const std::set<std::string> exports = {"isVisaIntfEditable", "isValidVisaIntf", "isVisaIntfSetup",
                                           "doVisaStartStuff", "doVisaEndStuff", "setupVisaIntf", "editVisaIntf"};
    EXPECT_EQ(functions, exports);
}

}  // namespace
}  // namespace braxcfg::test
