// Renaming stale entries to the interface's current VISA name.
#include <gtest/gtest.h>

#include <strings.h>

#include <random>
#include <vector>

#include "platform/reg_types.h"
#include "platform/registry.h"
#include "platform/store.h"
#include "store/config_store.h"
#include "store_builder.h"
#include "temp_store.h"
#include "tree_text.h"

namespace braxcfg::store {
namespace {

using platform::kRegOpenExisting;
using platform::kRegOpenOrCreate;
using platform::Registry;
using test::putBytes;
using test::putInterface;
using test::putKey;
using test::putString;
using test::treeText;
using test::underProduct;

// Key paths below `sub`, depth first in the store's order.
std::vector<std::string> keyPaths(const std::string& sub) {
    std::vector<std::string> out;
    const std::string text = treeText(sub);
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = text.find('\n', start);
        const std::string line = text.substr(start, end - start);
        if (line.size() >= 2 && line.front() == '[') out.push_back(line.substr(1, line.size() - 2));
        start = end + 1;
    }
    return out;
}

TEST(RenameIntfEntries, BringsEveryStaleNameInLine) {
    struct Case {
        const char* label;
        std::vector<std::string> before;  // below INTF0
        std::vector<std::string> after;
    };
    const Case cases[] = {
        {"in line, case ignored", {"VISADev\\gpib0::5"}, {"VISADev", "VISADev\\gpib0::5"}},
        {"longer board number", {"VISADev\\GPIB10::5"}, {"VISADev", "VISADev\\GPIB0::5"}},
        {"longer word", {"VISADev\\GPIB0x::5"}, {"VISADev", "VISADev\\GPIB0::5"}},
        {"no colon", {"VISADev\\GPIB1"}, {"VISADev", "VISADev\\GPIB0"}},
        {"single colon", {"VISADev\\GPIB1:x"}, {"VISADev", "VISADev\\GPIB0:x"}},
        {"nested entries",
         {"VISADev\\GPIB1::22\\GPIB1::22::INSTR"},
         {"VISADev", "VISADev\\GPIB0::22", "VISADev\\GPIB0::22\\GPIB0::22::INSTR"}},
        {"in-line subkeys kept with all below them",
         {"VISADev\\GPIB1::22\\GPIB0::22::SOCKET\\X1::9"},
         {"VISADev", "VISADev\\GPIB0::22", "VISADev\\GPIB0::22\\GPIB0::22::SOCKET",
          "VISADev\\GPIB0::22\\GPIB0::22::SOCKET\\X1::9"}},
        {"in-line entry's stale subkeys left alone",
         {"VISADev\\GPIB0::22\\GPIB1::22::INSTR"},
         {"VISADev", "VISADev\\GPIB0::22", "VISADev\\GPIB0::22\\GPIB1::22::INSTR"}},
        {"interface resources",
         {"VISAIntfRsrc\\GPIB3::INTFC", "VISAIntfRsrc\\GPIB0::BACKPLANE"},
         {"VISAIntfRsrc", "VISAIntfRsrc\\GPIB0::BACKPLANE", "VISAIntfRsrc\\GPIB0::INTFC"}},
        {"two stale names onto one", {"VISADev\\GPIB1::7", "VISADev\\GPIB2::7"}, {"VISADev", "VISADev\\GPIB0::7"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        test::TempStore temp;
        putInterface("INTF0", "GPIB0", "GPIB");
        for (const std::string& path : c.before) putKey(underProduct("INTF0\\" + path));
        ConfigStore().RenameIntfEntries("INTF0");
        std::vector<std::string> after = keyPaths("INTF0");
        after.erase(after.begin());  // the interface key itself
        EXPECT_EQ(after, c.after);
    }
}

TEST(RenameIntfEntries, CopiesValuesByTheirType) {
    test::TempStore temp;
    putInterface("INTF0", "GPIB0", "GPIB");
    const std::string old = underProduct("INTF0\\VISADev\\GPIB1::22");
    putString(old, "", "default");
    putString(old, "Driver", "INSTR");
    putBytes(old, "Flag", platform::kRegBinary, std::string("\x05", 1));
    putBytes(old, "Wide", platform::kRegBinary, std::string("\x07\x00\x00", 3));
    putBytes(old, "Number", platform::kRegDword, std::string("\x78\x56\x34\x12", 4));
    putBytes(old, "Big", platform::kRegQword, std::string(8, '\x01'));
    putBytes(old, "Path", platform::kRegExpandSz, std::string("%X%\0", 4));
    putString(old, std::string(100, 'L'), "long value name");
    ConfigStore().RenameIntfEntries("INTF0");
    // Flags are copied as one byte read as one byte: a wider value does not
    // fit that read and becomes 0.
    EXPECT_EQ(treeText("INTF0\\VISADev\\GPIB0::22"), "[]\n"
                                                      "  \"\" sz \"default\"\n"
                                                      "  \"Driver\" sz \"INSTR\"\n"
                                                      "  \"Flag\" binary 01\n"
                                                      "  \"Wide\" binary 00\n"
                                                      "  \"Number\" dword 0x12345678\n"
                                                      "  \"" + std::string(100, 'L') + "\" sz \"long value name\"\n");
    EXPECT_FALSE(test::keyExists(old));
}

TEST(RenameIntfEntries, InLineSubkeysMoveUnchangedAndWinOverRenamedOnes) {
    test::TempStore temp;
    putInterface("INTF0", "GPIB0", "GPIB");
    const std::string old = underProduct("INTF0\\VISADev\\GPIB1::22\\");
    putBytes(old + "GPIB0::22::SOCKET", "Big", platform::kRegQword, std::string(8, '\x01'));
    putBytes(old + "GPIB0::22::SOCKET", "Wide", platform::kRegBinary, std::string("\x07\x00\x00", 3));
    putString(old + "GPIB0::22::SOCKET\\GPIB1::3", "Driver", "S");
    putString(old + "GPIB0::22::INSTR", "Driver", "in line");
    putString(old + "GPIB1::22::INSTR", "Driver", "renamed");
    putString(old + "GPIB1::22::INSTR", "Extra", "renamed");
    const std::string before = treeText("INTF0\\VISADev\\GPIB1::22\\GPIB0::22::SOCKET");
    ConfigStore().RenameIntfEntries("INTF0");
    EXPECT_EQ(treeText("INTF0\\VISADev\\GPIB0::22\\GPIB0::22::SOCKET"), before);
    EXPECT_EQ(treeText("INTF0\\VISADev\\GPIB0::22\\GPIB0::22::INSTR"),
              "[]\n  \"Driver\" sz \"in line\"\n  \"Extra\" sz \"renamed\"\n");
}

TEST(RenameIntfEntries, ARenameOntoAnExistingEntryWritesOverItsValues) {
    test::TempStore temp;
    putInterface("INTF0", "GPIB0", "GPIB");
    const std::string dev = underProduct("INTF0\\VISADev\\");
    putString(dev + "GPIB0::22", "Driver", "A");
    putString(dev + "GPIB0::22", "Extra", "x");
    putString(dev + "GPIB1::22", "Driver", "B");
    putString(dev + "GPIB1::22", "One", "1");
    putString(dev + "GPIB2::22", "Driver", "C");
    ConfigStore().RenameIntfEntries("INTF0");
    EXPECT_EQ(treeText("INTF0\\VISADev"),
              "[]\n[GPIB0::22]\n"
              "  \"Driver\" sz \"C\"\n"
              "  \"Extra\" sz \"x\"\n"
              "  \"One\" sz \"1\"\n");
}

TEST(RenameIntfEntries, AnEntryThatCannotBeDeletedEndsTheList) {
    // A subkey name too long to enumerate keeps its entry from being deleted.
    test::TempStore temp;
    putInterface("INTF0", "GPIB0", "GPIB");
    const std::string dev = underProduct("INTF0\\VISADev\\");
    putKey(dev + "GPIB1::1");
    putKey(dev + "GPIB1::2\\" + std::string(90, 'Z'));
    putKey(dev + "GPIB1::3");
    putKey(underProduct("INTF0\\VISAIntfRsrc\\GPIB1::INTFC"));
    ConfigStore().RenameIntfEntries("INTF0");
    EXPECT_EQ(keyPaths("INTF0\\VISADev"),
              (std::vector<std::string>{"", "GPIB0::1", "GPIB0::2", "GPIB1::2", "GPIB1::2\\" + std::string(90, 'Z'),
                                        "GPIB1::3"}));
    EXPECT_EQ(keyPaths("INTF0\\VISAIntfRsrc"), (std::vector<std::string>{"", "GPIB0::INTFC"}));
}

TEST(RenameIntfEntries, InvalidInterfacesAreLeftAlone) {
    test::TempStore temp;
    putString(underProduct("INTF0"), "VISAIntfType", "GPIB");
    putKey(underProduct("INTF0\\VISADev\\GPIB1::1"));
    const std::string before = treeText("INTF0");
    ConfigStore().RenameIntfEntries("INTF0");
    ConfigStore().RenameIntfEntries("INTF1");
    EXPECT_EQ(treeText("INTF0"), before);
    EXPECT_FALSE(test::keyExists(underProduct("INTF1")));
}

// ---- The same result as renaming the first stale entry from index 0, over
// ---- and over, on random lists.

bool inLine(const std::string& entry, const std::string& visaName) {
    const std::size_t end = std::min(entry.find(':'), entry.size());
    return end == visaName.size() && strncasecmp(entry.c_str(), visaName.c_str(), end) == 0;
}

void copyAllUnchanged(const Registry& from, const Registry& to) {
    char name[20000];
    std::uint8_t data[4096];
    for (std::uint32_t i = 0;; ++i) {
        std::uint32_t cch = sizeof name, cb = sizeof data;
        platform::RegType type = 0;
        if (platform::currentStore().enumValue(from.handle(), i, name, &cch, &type, data, &cb) != 0) break;
        platform::currentStore().setValue(to.handle(), name, type, data, cb);
    }
    for (std::uint32_t i = 0; !from.enumKey(i).empty(); ++i)
        copyAllUnchanged(Registry(from.handle(), from.enumKey(i), kRegOpenExisting),
                         Registry(to.handle(), from.enumKey(i), kRegOpenOrCreate));
}

void copyByType(const Registry& from, const Registry& to) {
    char name[20000];
    for (std::uint32_t i = 0;; ++i) {
        std::uint32_t cch = sizeof name;
        platform::RegType type = 0;
        if (platform::currentStore().enumValue(from.handle(), i, name, &cch, &type, nullptr, nullptr) != 0) break;
        std::uint32_t number = 0;
        if (type == platform::kRegSz) to.setString(name, from.getString(name));
        if (type == platform::kRegBinary) to.setBool(name, from.getBool(name));
        if (type == platform::kRegDword) from.getDword(name, &number), to.setDword(name, number);
    }
}

bool restartingRepair(const Registry& source, const Registry& destination, const std::string& visaName,
                      bool inPlace) {
    bool renamed = false;
    for (std::uint32_t i = 0;;) {
        const std::string entry = source.enumKey(i);
        if (entry.empty()) break;
        if (inLine(entry, visaName)) {
            ++i;
            continue;
        }
        const std::string newName = visaName + entry.substr(std::min(entry.find(':'), entry.size()));
        {
            const Registry from(source.handle(), entry, kRegOpenExisting);
            const Registry to(destination.handle(), newName, kRegOpenOrCreate);
            copyByType(from, to);
            restartingRepair(from, to, visaName, false);
        }
        if (source.deleteTree(entry) != 0) return renamed;
        renamed = true;
        i = 0;
    }
    if (!inPlace)
        for (std::uint32_t i = 0; !source.enumKey(i).empty(); ++i)
            if (inLine(source.enumKey(i), visaName))
                copyAllUnchanged(Registry(source.handle(), source.enumKey(i), kRegOpenExisting),
                                 Registry(destination.handle(), source.enumKey(i), kRegOpenOrCreate));
    return renamed;
}

void restartingRename(const std::string& intf, const std::string& visaName) {
    for (const char* list : {"\\VISADev", "\\VISAIntfRsrc"}) {
        const Registry key(intf + list, kRegOpenExisting);
        for (std::uint32_t i = 0; !key.enumKey(i).empty();) i = restartingRepair(key, key, visaName, true) ? 0 : i + 1;
    }
}

// A random list: names with in-line, stale and colliding prefixes, some too
// long to enumerate, nested entries, values of several types.
std::vector<std::pair<std::string, std::string>> randomEntries(std::mt19937& random) {
    static const char* const kPrefixes[] = {"GPIB0", "gpib0", "GPIB1", "GPIB10", "GPIB0x", "", "Gpib2", "GPIB0:"};
    static const char* const kSuffixes[] = {"", "::1", "::2", "::22", ":a", "::1::INSTR"};
    auto pick = [&](auto& array) { return array[random() % std::size(array)]; };
    auto name = [&] {
        std::string n = std::string(pick(kPrefixes)) + pick(kSuffixes);
        // Around the length at which enumeration stops seeing a name, so
        // that a rename can make a name visible or invisible.
        if (random() % 8 == 0) n += std::string(70 + random() % 11, 'W');
        return n;
    };
    std::vector<std::pair<std::string, std::string>> entries;  // path, value name ("" = key only)
    const int count = 1 + static_cast<int>(random() % 10);
    for (int i = 0; i < count; ++i) {
        std::string path = std::string(random() % 3 ? "VISADev\\" : "VISAIntfRsrc\\") + name();
        for (int depth = static_cast<int>(random() % 3); depth > 0; --depth) path += "\\" + name();
        entries.emplace_back(path, random() % 2 ? "" : "V" + std::to_string(random() % 3));
    }
    return entries;
}

void putEntries(const std::string& intf, const std::vector<std::pair<std::string, std::string>>& entries) {
    int n = 0;
    for (const auto& [path, value] : entries) {
        const std::string key = underProduct(intf + "\\" + path);
        if (value.empty()) {
            putKey(key);
            continue;
        }
        static const platform::RegType kTypes[] = {platform::kRegSz, platform::kRegBinary, platform::kRegDword,
                                                   platform::kRegQword};
        const platform::RegType type = kTypes[n % 4];
        putBytes(key, value, type, type == platform::kRegSz ? std::to_string(n) + '\0' : std::string(4, char(n)));
        ++n;
    }
}

TEST(RenameIntfEntries, MatchesRenamingFromTheStartAfterEveryRename) {
    test::TempStore temp;
    for (unsigned seed = 1; seed <= 250; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        // Now and then a VISA name with a colon: its new names are stale
        // again and grow until an enumeration no longer sees them.
        const std::string visaName = seed % 25 == 0 ? "GPIB0:" : seed % 2 ? "GPIB0" : "GPIB123";
        const auto entries = randomEntries(random);
        platform::StoreTransaction batch;  // one write to the file per seed
        Registry(platform::kLocalMachine, underProduct(), kRegOpenOrCreate).deleteTree("INTF0");
        Registry(platform::kLocalMachine, underProduct(), kRegOpenOrCreate).deleteTree("INTF1");
        putInterface("INTF0", visaName, "GPIB");
        putInterface("INTF1", visaName, "GPIB");
        putEntries("INTF0", entries);
        putEntries("INTF1", entries);
        restartingRename("INTF0", visaName);
        ConfigStore().RenameIntfEntries("INTF1");
        ASSERT_EQ(treeText("INTF1"), treeText("INTF0"));
    }
}

}  // namespace
}  // namespace braxcfg::store
