// The plug-in as a host sees it: loaded with dlopen, called through its C
// exports, reading a store that this test process writes.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <cstdlib>
#include <memory>
#include <set>

#include "store_builder.h"
#include "temp_store.h"

namespace {

using braxcfg::test::putDword;
using braxcfg::test::putInterface;
using braxcfg::test::putString;
using braxcfg::test::underProduct;

using Predicate = int (*)(const char*);

// One store for the whole program: the plug-in opens its store once, from
// BRAXCFG_STORE, as it does in a host.
class Exports : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        store_ = new braxcfg::test::TempStore();
        setenv("BRAXCFG_STORE", store_->path().c_str(), 1);
        handle_ = dlopen(BRAXCFG_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle_, nullptr) << dlerror();
    }
    static void TearDownTestSuite() {
        delete store_;
        store_ = nullptr;
    }

    static Predicate predicate(const char* name) {
        auto fn = reinterpret_cast<Predicate>(dlsym(handle_, name));
        EXPECT_NE(fn, nullptr) << name;
        return fn;
    }

    static int valid(const char* intf) { return predicate("isValidVisaIntf")(intf); }
    static int setUp(const char* intf) { return predicate("isVisaIntfSetup")(intf); }
    static int editable(const char* intf) { return predicate("isVisaIntfEditable")(intf); }

    static braxcfg::test::TempStore* store_;
    static void* handle_;
};

braxcfg::test::TempStore* Exports::store_ = nullptr;
void* Exports::handle_ = nullptr;

struct PredicateCase {
    const char* intf;
    const char* visaName;  // null: no interface key
    const char* typeWord;
    const char* driverValueName;  // null: not set up
    int valid, setUp, editable;
};

TEST_F(Exports, PredicatesAnswerFromTheStore) {
    const PredicateCase cases[] = {
        {"INTF0", nullptr, nullptr, nullptr, 0, 0, 0},
        {"INTF1", "", "GPIB", "VISAAutoConfigDriver", 0, 0, 0},
        {"INTF2", "GPIB0", "GPIB", nullptr, 1, 0, 1},
        {"INTF3", "GPIB1", "gpib", nullptr, 1, 0, 0},
        {"INTF4", "GPIB2", "GPIB", "VISAAutoConfigDriver", 1, 1, 1},
        {"INTF5", "GPIB3", "GPIB", "visaautoconfigdriver", 1, 0, 1},
        {"INTF6", "VXI0", "VXI", nullptr, 1, 0, 1},
        {"INTF7", "GPIB-VXI0", "GPIB-VXI", nullptr, 1, 0, 1},
        {"INTF8", "TCPIP0", "TCPIP", nullptr, 1, 0, 1},
        {"INTF9", "ASRL1", "ASRL", nullptr, 1, 0, 0},
        {"INTF10", "PXI0", "PXI", nullptr, 1, 0, 0},
        {"INTF11", "USB0", "USB", nullptr, 1, 0, 0},
        {"INTF12", "RSIB0", "RSIB", nullptr, 1, 0, 0},
        {"INTF13", "X0", "", nullptr, 1, 0, 0},
    };
    putDword(underProduct(), "LinkbaseVisaPresent", 1);
    for (const auto& c : cases) {
        if (c.visaName == nullptr) continue;
        putInterface(c.intf, c.visaName, c.typeWord);
        if (c.driverValueName) putString(underProduct(c.intf), c.driverValueName, "");
    }
    for (const auto& c : cases) {
        SCOPED_TRACE(c.intf);
        EXPECT_EQ(valid(c.intf), c.valid);
        EXPECT_EQ(setUp(c.intf), c.setUp);
        EXPECT_EQ(editable(c.intf), c.editable);
    }
    EXPECT_EQ(valid(nullptr), 0);
    EXPECT_EQ(editable(""), 0);
    // Without the product's VISA nothing is editable.
    putDword(underProduct(), "LinkbaseVisaPresent", 0);
    EXPECT_EQ(editable("INTF2"), 0);
}

TEST_F(Exports, StartStuffChangesNothing) {
    putInterface("INTF21", "GPIB21", "GPIB");
    auto start = reinterpret_cast<void (*)(const char*)>(dlsym(handle_, "doVisaStartStuff"));
    ASSERT_NE(start, nullptr);
    // Any write would grow the store or its write-ahead log.
    const auto storeBytes = [] {
        std::error_code ec;
        const auto wal = std::filesystem::file_size(store_->path() + "-wal", ec);
        return std::filesystem::file_size(store_->path()) + (ec ? 0 : wal);
    };
    const auto before = storeBytes();
    start("INTF21");
    start("");
    start(nullptr);
    EXPECT_EQ(setUp("INTF21"), 0);
    EXPECT_EQ(storeBytes(), before);
}

TEST(PluginSymbols, OnlyTheSevenExportsAreVisible) {
    const std::string command = std::string("nm -D --defined-only ") + BRAXCFG_PLUGIN_PATH;
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    ASSERT_NE(pipe, nullptr);
    std::set<std::string> functions;
    char line[512];
    while (std::fgets(line, sizeof line, pipe.get())) {
        char address[64], kind[8], name[400];
        if (std::sscanf(line, "%63s %7s %399s", address, kind, name) == 3 && std::string(kind) == "T")
            functions.insert(name);
    }
    const std::set<std::string> expected = {"isVisaIntfEditable", "isValidVisaIntf", "isVisaIntfSetup",
                                            "doVisaStartStuff",   "doVisaEndStuff",  "setupVisaIntf",
                                            "editVisaIntf"};
    EXPECT_EQ(functions, expected);
}

}  // namespace
