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
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;
using test::treeText;

// The key lines of a tree below its own, one per line.
std::string keyLines(const std::string& sub) {
    std::string keys;
    const std::string text = treeText(sub);
    for (std::size_t at = text.find("\n["); at != std::string::npos; at = text.find("\n[", at + 1))
        keys += text.substr(at + 2, text.find(']', at) - at - 2) + "\n";
    return keys;
}

// The rename cases that must hold as stated; the comparison with the literal
// procedure below covers the rest (undeletable entries, resource lists,
// names with colons, entries that collide in several ways).
TEST(RenameIntfEntries, BringsEveryStaleNameInLine) {
    const struct {
        const char* visaName;
        const char* before;  // below INTF0\VISADev
        const char* after;
    } cases[] = {
        {"GPIB0", "gpib0::5", "gpib0::5\n"},
        {"GPIB0", "GPIB10::5", "GPIB0::5\n"},
        {"GPIB0", "GPIB1::22\\GPIB1::22::INSTR", "GPIB0::22\nGPIB0::22\\GPIB0::22::INSTR\n"},
        {"GPIB0", "GPIB1::22\\GPIB0::22::SOCKET\\X1::9",
         "GPIB0::22\nGPIB0::22\\GPIB0::22::SOCKET\nGPIB0::22\\GPIB0::22::SOCKET\\X1::9\n"},
        {"", "GPIB1::1", "GPIB1::1\n"},  // no VISA name: no interface
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.before);
        test::TempStore temp;
        test::putTree(std::string("[INTF0]\n\"VISAName\"=\"") + c.visaName + "\"\n" +
                      "[INTF0\\VISADev\\" + c.before + "]\n");
        ConfigStore().RenameIntfEntries("INTF0");
        EXPECT_EQ(keyLines("INTF0\\VISADev"), c.after);
    }
}

TEST(RenameIntfEntries, CopiesValuesByTheirTypeAndWritesOverAnExistingEntry) {
    test::TempStore temp;
    // Qword and expandable texts are not the run time's and stay behind; a
    // binary value wider than one byte does not read as a flag and becomes 0.
    test::putTree("[INTF0]\n\"VISAName\"=\"GPIB0\"\n[INTF0\\VISADev\\GPIB1::22]\n@=\"default\"\n\"Flag\"=hex:05\n"
                  "\"Wide\"=hex:07,00,00\n\"Number\"=dword:12345678\n\"Big\"=hex(b):01,01,01,01,01,01,01,01\n"
                  "\"Path\"=hex(2):25,58,25,00\n\"" + std::string(100, 'L') + "\"=\"long name\"\n"
                  "[INTF0\\VISADev\\GPIB0::7]\n\"Driver\"=\"A\"\n\"Extra\"=\"x\"\n"
                  "[INTF0\\VISADev\\GPIB1::7]\n\"Driver\"=\"B\"\n\"One\"=\"1\"\n"
                  "[INTF0\\VISADev\\GPIB2::7]\n\"Driver\"=\"C\"\n");
    ConfigStore().RenameIntfEntries("INTF0");
    EXPECT_EQ(treeText("INTF0\\VISADev"),
              "[]\n[GPIB0::22]\n@=\"default\"\n\"Flag\"=hex:01\n\"Wide\"=hex:00\n\"Number\"=dword:12345678\n\"" +
                  std::string(100, 'L') + "\"=\"long name\"\n"
                  "[GPIB0::7]\n\"Driver\"=\"C\"\n\"Extra\"=\"x\"\n\"One\"=\"1\"\n");
}

// ---- The literal procedure: rename the first stale entry an enumeration
// ---- from index 0 finds, then start again from index 0.

bool inLine(const std::string& entry, const std::string& visaName) {
    const std::size_t end = std::min(entry.find(':'), entry.size());
    return end == visaName.size() && strncasecmp(entry.c_str(), visaName.c_str(), end) == 0;
}

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
    static const char* const kValues[] = {"\"text\"",         "hex:01", "hex:07,00,00,00",
                                          "dword:00000005", "hex:",   "hex(b):01,00,00,00,00,00,00,00"};
    for (unsigned seed = 1; seed <= 250; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        // Now and then a VISA name with a colon: its new names are stale
        // again and grow until an enumeration no longer sees them.
        const std::string visaName = seed % 25 == 0 ? "GPIB0:" : seed % 2 ? "GPIB0" : "GPIB123";
        const auto name = [&] {
            std::string n = kPrefixes[random() % 8];
            n += kSuffixes[random() % 6];
            // Around the length at which enumeration stops seeing a name, so
            // that a rename can make a name visible or invisible.
            if (random() % 8 == 0) n += std::string(70 + random() % 11, 'W');
            return n;
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
            for (std::uint32_t i = 0; !key.enumKey(i).empty();)
                i = restartingRepair(key, key, visaName, true) ? 0 : i + 1;
        }
        ConfigStore().RenameIntfEntries("INTF1");
        ASSERT_EQ(treeText("INTF1"), treeText("INTF0"));
    }
}

}  // namespace
}  // namespace braxcfg::store

namespace braxcfg::store {
namespace {

// A stale entry 20,000 levels deep (only a foreign tool makes one): the end
// of a pass leaves it as it is, like an entry that cannot be deleted, and
// carries on; the host is not brought down.
TEST(RenameIntfEntries, LeavesAnEntryTooDeepToCopyAndFinishesThePass) {
    test::TempStore temp;
    test::putTree("[INTF0]\n\"VISAName\"=\"GPIB0\"\n\"VISAIntfType\"=\"GPIB\"\n[INTF0\\VISADev\\GPIB1::4]\n");
    {
        platform::StoreTransaction transaction;
        platform::StoreBackend& store = platform::currentStore();
        const Registry deep("INTF0\\VISADev\\GPIB1::5", kRegOpenOrCreate);
        platform::HKey key = platform::kNoKey;
        store.openKey(deep.handle(), "", platform::kKeyAllAccess, &key);
        for (int level = 0; level < 20000; ++level) {
            platform::HKey next = platform::kNoKey;
            store.createKey(key, "k", platform::kKeyAllAccess, &next, nullptr);
            store.closeKey(key);
            key = next;
        }
        store.closeKey(key);
        ASSERT_TRUE(transaction.commit());
    }
    EXPECT_EQ(doVisaEndStuff(ConfigStore()), platform::StoreFailure::None);
    EXPECT_TRUE(Registry("INTF0\\VISADev\\GPIB0::4", kRegOpenExisting).isOpen());
    EXPECT_TRUE(Registry("INTF0\\VISADev\\GPIB1::5\\k\\k", kRegOpenExisting).isOpen());
    EXPECT_EQ(ConfigStore().IsVisaIntfSetup("INTF0"), 1);
}

}  // namespace
}  // namespace braxcfg::store
