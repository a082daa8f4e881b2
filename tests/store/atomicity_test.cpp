// Every store operation that rewrites many keys is one transaction: a
// process killed at any point of it leaves the store as it was before or as
// it is after, never half-way. Children are killed with SIGKILL at random
// moments of a large rewrite and the store is read back.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <regex>
#include <string>
#include <thread>

#include "dialogs/alist.h"
#include "platform/product_settings.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store_builder.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenOrCreate;
using platform::Registry;

constexpr int kSize = 400;  // keys or aliases each operation rewrites

void putTemplateClasses(const char* table, const char* typeWord) {
    for (int i = 0; i < kSize; ++i) {
        const Registry c(std::string("VISAInfo\\") + table + "\\C" + std::to_string(i), kRegOpenOrCreate);
        c.setString("DrvrName", "INSTR");
        c.setString("PrefixName", "C" + std::to_string(i));
        c.setBool(typeWord, true);
    }
}

void putInterfaceKey(bool withDeviceList) {
    const Registry intf("INTF0", kRegOpenOrCreate);
    intf.setString("VISAName", "GPIB0");
    intf.setString("VISAIntfType", "GPIB");
    if (withDeviceList) Registry(intf.handle(), "VISADev", kRegOpenOrCreate);
}

struct Operation {
    const char* name;
    void (*prepare)();
    void (*run)();
};

const Operation kOperations[] = {
    {"RenameIntfEntries",
     [] {
         putInterfaceKey(true);
         for (int i = 0; i < kSize; ++i) {
             const std::string device = "GPIB1::" + std::to_string(i);
             Registry("INTF0\\VISADev\\" + device + "\\" + device + "::INSTR", kRegOpenOrCreate)
                 .setString("Driver", "INSTR");
         }
     },
     [] { ConfigStore().RenameIntfEntries("INTF0"); }},
    {"SetupIntfEntries",
     [] {
         putInterfaceKey(false);
         putTemplateClasses("DefaultIntfRsrcs", "GPIB");
     },
     [] { ConfigStore().SetupIntfEntries("INTF0", 1); }},
    {"AddDeviceEntry",
     [] {
         putInterfaceKey(true);
         putTemplateClasses("DefaultRsrcs", "GPIB");
     },
     [] { ConfigStore().AddDeviceEntry("INTF0", "GPIB0::5", ""); }},
    {"WriteVisaInfoDefaults", [] { putTemplateClasses("DefaultIntfRsrcs", "GPIB"); },
     [] {
         resetVisaInfoWrittenFlag();
         ConfigStore().WriteVisaInfoDefaults();
     }},
    {"alias commit",
     [] {
         for (int i = 0; i < kSize; ++i)
             platform::changeDeviceLists("Alias" + std::to_string(i), "gpib0," + std::to_string(i),
                                         "TCPIP0::host" + std::to_string(i) + "::INSTR");
     },
     [] {
         dialogs::AList list;
         list.load();
         list.reset();
         while (dialogs::AliasEntry* entry = list.next()) {
             entry->setName(*entry->name() + "x");
             list.markChanged(entry);
         }
         list.commit();
         list.deleteRecords();
     }},
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

// The store as text; the time stamp of the information block says nothing
// about atomicity and differs from run to run.
std::string observe() {
    static const std::regex lastMod("\"LastMod\" sz \"[^\"]*\"");
    return std::regex_replace(test::treeText(""), lastMod, "\"LastMod\"");
}

class KilledMidway : public ::testing::TestWithParam<Operation> {
protected:
    void SetUp() override {
        path_ = test::testOutputDir("atomicity") + "/" + std::to_string(getpid()) + ".db";
    }
    void TearDown() override {
        platform::closeStore();
        removeStore();
    }

    void removeStore() const {
        for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path_ + suffix);
    }

    // A fresh store with the operation's starting content; its text.
    std::string prepared() const {
        platform::closeStore();
        removeStore();
        platform::openStore(path_);
        {
            platform::StoreTransaction batch;
            GetParam().prepare();
            batch.commit();
        }
        return observe();
    }

    std::string path_;
};

TEST_P(KilledMidway, LeavesTheStoreAsBeforeOrAsAfter) {
    const Operation& operation = GetParam();
    prepared();
    const auto started = std::chrono::steady_clock::now();
    operation.run();
    const auto duration = std::chrono::steady_clock::now() - started;
    const std::string after = observe();

    std::mt19937 random(12345);
    int sawBefore = 0, sawAfter = 0;
    for (int trial = 0; trial < 6; ++trial) {
        const std::string before = prepared();
        ASSERT_NE(before, after);
        platform::closeStore();
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            platform::openStore(path_);
            operation.run();
            _exit(0);
        }
        const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(duration).count();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % (micros * 3 / 2 + 1)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        platform::openStore(path_);
        const std::string found = observe();
        if (found == before) ++sawBefore;
        if (found == after) ++sawAfter;
        ASSERT_TRUE(found == before || found == after) << operation.name << ", trial " << trial;
    }
    RecordProperty("before", sawBefore);
    RecordProperty("after", sawAfter);
}

INSTANTIATE_TEST_SUITE_P(Operations, KilledMidway, ::testing::ValuesIn(kOperations),
                         [](const ::testing::TestParamInfo<Operation>& info) {
                             std::string name = info.param.name;
                             for (char& c : name)
                                 if (c == ' ') c = '_';
                             return name;
                         });

}  // namespace
}  // namespace braxcfg::store
