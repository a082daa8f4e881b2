// AList: node bookkeeping under removal and iteration, duplicates, and the
// round trip through the two alias lists.
#include "dialogs/alist.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "platform/product_settings.h"
#include "store_builder.h"
#include "temp_store.h"

namespace braxcfg::dialogs {
namespace {

using Text = AliasEntry::Text;

std::vector<AliasEntry*> items(AList& list) {
    std::vector<AliasEntry*> out;
    list.reset();
    while (AliasEntry* item = list.next()) out.push_back(item);
    return out;
}

// Entries that outlive the lists holding them.
struct Entries {
    AliasEntry* make(const char* name, const Text& rsrc = std::nullopt) {
        owned.push_back(std::make_unique<AliasEntry>(Text(name), rsrc, std::nullopt));
        return owned.back().get();
    }
    std::vector<std::unique_ptr<AliasEntry>> owned;
};

TEST(AList, AppendAfterRemovingTheLastNodeFindsTheNewLast) {
    Entries e;
    AliasEntry* a = e.make("a");
    AliasEntry* b = e.make("b");
    AliasEntry* c = e.make("c");
    AliasEntry* d = e.make("d");
    AList list;
    list.append(a);
    list.append(b);
    list.append(c);
    EXPECT_EQ(list.remove(c), 0);
    list.append(d);
    EXPECT_EQ(items(list), (std::vector<AliasEntry*>{a, b, d}));
    EXPECT_EQ(list.count(), 3u);

    // Removing the only node, then appending, starts the list anew.
    AList single;
    single.append(a);
    single.remove(a);
    single.append(b);
    EXPECT_EQ(items(single), std::vector<AliasEntry*>{b});
}

TEST(AList, PrependKeepsTheKnownLastNode) {
    Entries e;
    AliasEntry* a = e.make("a");
    AliasEntry* b = e.make("b");
    AliasEntry* z = e.make("z");
    AList list;
    list.prepend(a);  // the last node is not known yet
    list.append(b);
    list.prepend(z);
    list.append(a);
    EXPECT_EQ(items(list), (std::vector<AliasEntry*>{z, a, b, a}));
    EXPECT_EQ(list.count(), 4u);
}

TEST(AList, RemoveTakesTheFirstNodeOfThatVeryItem) {
    Entries e;
    AliasEntry* a = e.make("same");
    AliasEntry* b = e.make("same");
    AliasEntry* c = e.make("c");
    AList list;
    list.append(a);
    list.append(b);
    list.append(a);
    list.append(c);
    EXPECT_EQ(list.remove(e.make("same")), 1);
    EXPECT_EQ(list.remove(a), 0);
    EXPECT_EQ(items(list), (std::vector<AliasEntry*>{b, a, c}));

    // The node under the cursor: the iteration goes on after it.
    list.reset();
    EXPECT_EQ(list.next(), b);
    EXPECT_EQ(list.remove(a), 0);
    EXPECT_EQ(list.next(), c);
    EXPECT_EQ(list.next(), nullptr);
    EXPECT_EQ(list.count(), 2u);
}

TEST(AList, DuplicatesIgnoreCaseAndDeletedEntries) {
    Entries e;
    AList list;
    AliasEntry* scope = e.make("Scope1", Text("TCPIP0::a::INSTR"));
    EXPECT_EQ(list.addRecord(scope), 0);
    EXPECT_EQ(scope->state(), AliasState::Added);
    AliasEntry* upper = e.make("SCOPE1");
    EXPECT_EQ(list.findDuplicate(upper), scope);
    EXPECT_EQ(list.addRecord(upper), 1);
    EXPECT_EQ(upper->state(), AliasState::Unchanged);
    EXPECT_EQ(list.findDuplicate(scope), nullptr);  // itself does not count

    EXPECT_EQ(list.markDeleted(scope), 0);
    EXPECT_EQ(list.addRecord(upper), 0);
    EXPECT_EQ(items(list), (std::vector<AliasEntry*>{scope, upper}));
    EXPECT_EQ(list.addRecord(nullptr), 1);
    EXPECT_EQ(list.markDeleted(nullptr), 1);
    EXPECT_EQ(list.markChanged(nullptr), 1);

    EXPECT_EQ(list.findByRsrcString("tcpip0::A::instr"), scope);
    EXPECT_EQ(list.findByRsrcString("TCPIP0::b::INSTR"), nullptr);
}

TEST(AList, ACopyKeepsTheNodesAliveUntilTheLastHandleGoes) {
    Entries e;
    AliasEntry* a = e.make("a");
    AliasEntry* b = e.make("b");
    auto original = std::make_unique<AList>();
    original->append(a);
    original->append(b);
    AList copy(*original);
    original.reset();
    EXPECT_EQ(items(copy), (std::vector<AliasEntry*>{a, b}));
}

class AliasLists : public ::testing::Test {
protected:
    void SetUp() override {
        using platform::changeDeviceLists;
        changeDeviceLists("Scope1", std::nullopt, "TCPIP0::scope::INSTR");
        changeDeviceLists("Dmm", std::nullopt, "TCPIP0::dmm::INSTR");
        changeDeviceLists("SCOPE1", "gpib0,1", std::nullopt);
        changeDeviceLists("Only", "gpib0,2", std::nullopt);
    }
    void TearDown() override { list_.deleteRecords(); }

    AliasEntry* named(const char* name) {
        AliasEntry probe(Text(name), std::nullopt, std::nullopt);
        return list_.findDuplicate(&probe);
    }

    static std::string lookup(const char* list, const char* name) {
        return platform::lookupDeviceList(list, name, "<none>");
    }

    test::TempStore temp_;
    AList list_;
};

TEST_F(AliasLists, LoadJoinsBothListsByName) {
    list_.load();
    ASSERT_EQ(list_.count(), 3u);
    const struct {
        const char* name;
        Text rsrc;
        Text korl;
        AliasState state;
    } expected[] = {{"Scope1", "TCPIP0::scope::INSTR", "gpib0,1", AliasState::Unchanged},
                    {"Dmm", "TCPIP0::dmm::INSTR", std::nullopt, AliasState::Unchanged},
                    {"Only", std::nullopt, "gpib0,2", AliasState::Added}};
    const auto loaded = items(list_);
    for (std::size_t i = 0; i < loaded.size(); ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(loaded[i]->name(), Text(expected[i].name));
        EXPECT_EQ(loaded[i]->rsrcString(), expected[i].rsrc);
        EXPECT_EQ(loaded[i]->korlAddress(), expected[i].korl);
        EXPECT_EQ(loaded[i]->state(), expected[i].state);
    }
}

TEST_F(AliasLists, CommitWritesEachEntryByItsState) {
    list_.load();
    // Someone changes the "Devices"-only alias behind the list's back: the
    // commit writes the loaded value again.
    platform::changeDeviceLists("Only", "elsewhere", std::nullopt);
    AliasEntry* dmm = named("Dmm");
    dmm->setName(Text("Meter"));
    list_.markChanged(dmm);
    list_.markDeleted(named("Scope1"));
    auto* added = new AliasEntry(Text("New"), Text("TCPIP0::new::SOCKET"), std::nullopt);
    ASSERT_EQ(list_.addRecord(added), 0);
    EXPECT_EQ(list_.commit(), 0);

    using platform::kDevicesList;
    using platform::kVisaDevicesList;
    EXPECT_EQ(lookup(kVisaDevicesList, "Scope1"), "<none>");
    EXPECT_EQ(lookup(kDevicesList, "Scope1"), "<none>");
    EXPECT_EQ(lookup(kVisaDevicesList, "Dmm"), "<none>");
    EXPECT_EQ(lookup(kVisaDevicesList, "Meter"), "TCPIP0::dmm::INSTR");
    EXPECT_EQ(lookup(kDevicesList, "Meter"), "<none>");
    EXPECT_EQ(lookup(kDevicesList, "Only"), "gpib0,2");
    EXPECT_EQ(lookup(kVisaDevicesList, "Only"), "<none>");
    EXPECT_EQ(lookup(kVisaDevicesList, "New"), "TCPIP0::new::SOCKET");
    EXPECT_EQ(lookup(kDevicesList, "New"), "<none>");
}

}  // namespace
}  // namespace braxcfg::dialogs
