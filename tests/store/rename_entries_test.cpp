// Renaming stale entries to the interface's current VISA name.
#include <gtest/gtest.h>

#include <strings.h>

#include <random>
#include <regex>
#include <vector>

#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store/interface_setup.h"
#include "key_chain.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;
using test::treeText;

// The rules that must hold as stated; the comparison with the literal
// procedure below covers the rest (undeletable entries, resource lists,
// names with colons, entries that collide in several ways). Qword and
// expandable texts are not the run time's and stay behind; a binary value
// wider than one byte does not read as a flag and becomes 0.
TEST(RenameIntfEntries, BringsEveryStaleNameInLineKeepingValuesByType) {
    test::TempStore temp;
    const std::string longName(100, 'L');
    test::putTree("[INTF0]\n\"VISAName\"=\"GPIB0\"\n[INTF0\\VISADev\\gpib0::5]\n[INTF0\\VISADev\\GPIB10::6\\GPIB10::6::INSTR]\n"
                  "[INTF0\\VISADev\\GPIB1::22\\GPIB0::22::SOCKET\\X1::9]\n[INTF0\\VISADev\\GPIB1::23]\n@=\"default\"\n"
                  "\"Flag\"=hex:05\n\"Wide\"=hex:07,00,00\n\"Number\"=dword:12345678\n\"Big\"=hex(b):01,01,01,01,01,01,01,01\n"
                  "\"Path\"=hex(2):25,58,25,00\n\"" + longName + "\"=\"long name\"\n"
                  "[INTF0\\VISADev\\GPIB0::7]\n\"Driver\"=\"A\"\n\"Extra\"=\"x\"\n"
                  "[INTF0\\VISADev\\GPIB1::7]\n\"Driver\"=\"B\"\n\"One\"=\"1\"\n[INTF0\\VISADev\\GPIB2::7]\n\"Driver\"=\"C\"\n"
                  "[INTF1]\n\"VISAName\"=\"\"\n[INTF1\\VISADev\\GPIB1::1]\n");
    const std::string noVisaName = treeText("INTF1");
    ConfigStore().RenameIntfEntries("INTF0");
    ConfigStore().RenameIntfEntries("INTF1");
    EXPECT_EQ(treeText("INTF0\\VISADev"),
              "[]\n[GPIB0::22]\n[GPIB0::22\\GPIB0::22::SOCKET]\n[GPIB0::22\\GPIB0::22::SOCKET\\X1::9]\n[GPIB0::23]\n"
              "@=\"default\"\n\"Flag\"=hex:01\n\"Wide\"=hex:00\n\"Number\"=dword:12345678\n\"" + longName + "\"=\"long name\"\n"
              "[gpib0::5]\n[GPIB0::6]\n[GPIB0::6\\GPIB0::6::INSTR]\n[GPIB0::7]\n\"Driver\"=\"C\"\n\"Extra\"=\"x\"\n\"One\"=\"1\"\n");
    EXPECT_EQ(treeText("INTF1"), noVisaName) << "no VISA name: no interface";
}

// The literal procedure: rename the first stale entry an enumeration from
// index 0 finds, then start again from index 0.
bool inLine(const std::string& entry, const std::string& visaName) {
    const std::size_t end = std::min(entry.find(':'), entry.size());
    return end == visaName.size() && strncasecmp(entry.c_str(), visaName.c_str(), end) == 0;
}

// Values as the run time reads them (byType), or byte for byte.
void copyValues(const Registry& from, const Registry& to, bool byType) {
    char name[20000];
    std::uint8_t data[4096];
    for (std::uint32_t i = 0;; ++i) {
        std::uint32_t cch = sizeof name, cb = sizeof data, number = 0;
        platform::RegType type = 0;
        if (platform::currentStore().enumValue(from.handle(), i, name, &cch, &type, data, &cb) != 0) break;
        if (!byType) platform::currentStore().setValue(to.handle(), name, type, data, cb);
        if (byType && type == platform::kRegSz) to.setString(name, from.getString(name));
        if (byType && type == platform::kRegBinary) to.setBool(name, from.getBool(name));
        if (byType && type == platform::kRegDword) from.getDword(name, &number), to.setDword(name, number);
    }
}

void copyUnchanged(const Registry& from, const Registry& to) {
    copyValues(from, to, false);
    for (std::uint32_t i = 0; !from.enumKey(i).empty(); ++i)
        copyUnchanged(Registry(from.handle(), from.enumKey(i), kRegOpenExisting),
                      Registry(to.handle(), from.enumKey(i), kRegOpenOrCreate));
}

bool restartingRepair(const Registry& source, const Registry& destination, const std::string& visaName, bool inPlace) {
    bool renamed = false;
    for (std::uint32_t i = 0; !source.enumKey(i).empty();) {
        const std::string entry = source.enumKey(i);
        if (inLine(entry, visaName) && ++i) continue;
        {
            const Registry from(source.handle(), entry, kRegOpenExisting);
            const Registry to(destination.handle(), visaName + entry.substr(std::min(entry.find(':'), entry.size())),
                              kRegOpenOrCreate);
            copyValues(from, to, true);
            restartingRepair(from, to, visaName, false);
        }
        if (source.deleteTree(entry) != 0) return renamed;
        renamed = true;
        i = 0;
    }
    for (std::uint32_t i = 0; !inPlace && !source.enumKey(i).empty(); ++i)
        if (inLine(source.enumKey(i), visaName))
            copyUnchanged(Registry(source.handle(), source.enumKey(i), kRegOpenExisting),
                          Registry(destination.handle(), source.enumKey(i), kRegOpenOrCreate));
    return renamed;
}

TEST(RenameIntfEntries, MatchesRenamingFromTheStartAfterEveryRename) {
    test::TempStore temp;
    static const char* const kPrefixes[] = {"GPIB0", "gpib0", "GPIB1", "GPIB10", "GPIB0x", "", "Gpib2", "GPIB0:"};
    static const char* const kSuffixes[] = {"", "::1", "::2", "::22", ":a", "::1::INSTR"};
    static const char* const kValues[] = {"\"text\"", "hex:01", "hex:07,00,00,00", "dword:00000005", "hex:",
                                          "hex(b):01,00,00,00,00,00,00,00"};
    for (unsigned seed = 1; seed <= 250; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        // Now and then a VISA name with a colon: its new names are stale
        // again and grow until an enumeration no longer sees them.
        const std::string visaName = seed % 25 == 0 ? "GPIB0:" : seed % 2 ? "GPIB0" : "GPIB123";
        const auto name = [&] {
            // Some around the length at which enumeration stops seeing a name,
            // so that a rename can make a name visible or invisible.
            return kPrefixes[random() % 8] + std::string(kSuffixes[random() % 6]) +
                   (random() % 8 ? "" : std::string(70 + random() % 11, 'W'));
        };
        std::string entries;  // below "[@\", the interface's key
        for (int i = 0, count = 1 + static_cast<int>(random() % 10); i < count; ++i) {
            entries += std::string("[@\\") + (random() % 3 ? "VISADev\\" : "VISAIntfRsrc\\") + name();
            for (int depth = static_cast<int>(random() % 3); depth > 0; --depth) entries += "\\" + name();
            entries += "]\n";
            if (random() % 2) entries += "\"V" + std::to_string(random() % 3) + "\"=" + kValues[random() % 6] + "\n";
        }
        platform::StoreTransaction batch;  // one write to the file per seed, rolled back
        for (const std::string intf : {"INTF0", "INTF1"})
            test::putTree("[-" + intf + "]\n[" + intf + "]\n\"VISAName\"=\"" + visaName + "\"\n" +
                          std::regex_replace(entries, std::regex("\\[@"), "[" + intf));
        for (const char* list : {"INTF0\\VISADev", "INTF0\\VISAIntfRsrc"}) {
            const Registry key(list, kRegOpenExisting);
            for (std::uint32_t i = 0; !key.enumKey(i).empty();) i = restartingRepair(key, key, visaName, true) ? 0 : i + 1;
        }
        ConfigStore().RenameIntfEntries("INTF1");
        ASSERT_EQ(treeText("INTF1"), treeText("INTF0"));
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
