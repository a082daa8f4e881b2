// Renaming stale entries to the interface's current VISA name.
#include <gtest/gtest.h>

#include <string>

#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/interface_setup.h"
#include "platform/store_key.h"
#include "file_bytes.h"
#include "key_chain.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;
using test::treeText;

// The names below INTF0's lists, one per line, whatever their length.
std::string keyNames() {
    std::string names;
    for (const char* list : {"INTF0\\VISADev", "INTF0\\VISAIntfRsrc"}) {
        const Registry key(list, kRegOpenExisting);
        const auto holder = platform::StoreKey::opened(key.handle(), "", platform::kKeyRead);
        for (const std::string& name : holder.subkeyNames()) names += name + "\n";
    }
    return names;
}

// Qword and expandable texts are not the run time's and stay behind; a
// binary value wider than one byte does not read as a flag and becomes 0.
// Entries that collide: the last renamed writes over the others' values.
// Values are made in name order, which Wine's registry enumerates them in.
TEST(RenameIntfEntries, BringsEveryStaleNameInLineKeepingValuesByType) {
    test::TempStore temp;
    const std::string longName(2000, 'L');  // past any fixed name buffer
    test::putTree("[INTF0]\n\"VISAName\"=\"GPIB0\"\n[INTF0\\VISADev\\gpib0::5]\n"
                  "[INTF0\\VISADev\\GPIB10::6\\GPIB10::6::INSTR]\n"
                  "[INTF0\\VISADev\\GPIB1::22\\GPIB0::22::SOCKET\\X1::9]\n[INTF0\\VISADev\\GPIB1::23]\n"
                  "@=\"default\"\n\"Big\"=hex(b):01,01,01,01,01,01,01,01\n\"Flag\"=hex:05\n"
                  "\"" + longName + "\"=\"long name\"\n\"Number\"=dword:12345678\n\"Path\"=hex(2):25,58,25,00\n"
                  "\"Wide\"=hex:07,00,00\n[INTF0\\VISADev\\GPIB0::7]\n\"Driver\"=\"A\"\n\"Extra\"=\"x\"\n"
                  "[INTF0\\VISADev\\GPIB1::7]\n\"Driver\"=\"B\"\n\"One\"=\"1\"\n"
                  "[INTF0\\VISADev\\GPIB2::7]\n\"Driver\"=\"C\"\n"
                  "[INTF1]\n\"VISAName\"=\"\"\n[INTF1\\VISADev\\GPIB1::1]\n");
    const std::string noVisaName = treeText("INTF1");
    for (const char* intf : {"INTF0", "INTF1"}) ConfigStore().RenameIntfEntries(intf);
    EXPECT_EQ(treeText("INTF0\\VISADev"),
              "[]\n[GPIB0::22]\n[GPIB0::22\\GPIB0::22::SOCKET]\n[GPIB0::22\\GPIB0::22::SOCKET\\X1::9]\n[GPIB0::23]\n"
              "@=\"default\"\n\"Flag\"=hex:01\n\"" + longName + "\"=\"long name\"\n\"Number\"=dword:12345678\n"
              "\"Wide\"=hex:00\n[gpib0::5]\n[GPIB0::6]\n[GPIB0::6\\GPIB0::6::INSTR]\n[GPIB0::7]\n\"Driver\"=\"C\"\n"
              "\"Extra\"=\"x\"\n\"One\"=\"1\"\n");
    EXPECT_EQ(treeText("INTF1"), noVisaName) << "no VISA name: no interface";
}

// Each list is renamed as an enumeration from index 0 sees it: a name of 80
// characters or more ends it, so the names after it stay stale; a VISA name
// with a colon makes every new name stale again, so it grows until it is too
// long to be seen.
TEST(RenameIntfEntries, StopsWhereAnEnumerationStops) {
    const std::string longStale = "GPIB1::1" + std::string(72, 'W');
    const struct { const char* visaName; std::string before, after; } cases[] = {
        {"GPIB0", "[@\\VISADev\\GPIB1::1]\n[@\\VISADev\\" + longStale + "]\n[@\\VISADev\\GPIB1::2]\n",
         "GPIB0::1\n" + longStale + "\nGPIB1::2\n"},
        {"GPIB0:", "[@\\VISAIntfRsrc\\GPIB1::5]\n", "GPIB0" + std::string(74, ':') + "5\n"},
    };
    for (const auto& c : cases) {
        test::TempStore temp;
        std::string tree = std::string("[INTF0]\n\"VISAName\"=\"") + c.visaName + "\"\n" + c.before;
        test::replaceAll(tree, "[@", "[INTF0");
        test::putTree(tree);
        ConfigStore().RenameIntfEntries("INTF0");
        EXPECT_EQ(keyNames(), c.after) << c.before;
    }
}

// A stale entry 20,000 levels deep (only a foreign tool makes one): the end
// of a pass leaves it as it is, like an entry that cannot be deleted, and
// carries on; the host is not brought down.
TEST(RenameIntfEntries, LeavesAnEntryTooDeepToCopyAndFinishesThePass) {
    test::TempStore temp;
    test::putTree("[INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n[INTF0\\VISADev\\GPIB1::4]\n");
    ASSERT_TRUE(test::createKeyChain(Registry("INTF0\\VISADev\\GPIB1::5", kRegOpenOrCreate).handle(), 20000));
    EXPECT_EQ(doVisaEndStuff(ConfigStore()), platform::StoreFailure::None);
    EXPECT_TRUE(Registry("INTF0\\VISADev\\GPIB0::4", kRegOpenExisting).isOpen());
    EXPECT_TRUE(Registry("INTF0\\VISADev\\GPIB1::5\\k\\k", kRegOpenExisting).isOpen());
    EXPECT_EQ(ConfigStore().IsVisaIntfSetup("INTF0"), 1);
}

}  // namespace
}  // namespace braxcfg::store
