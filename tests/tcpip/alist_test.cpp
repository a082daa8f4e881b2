// AList: node bookkeeping under removal and iteration, and the loading of
// the two alias lists. Its duplicate rules are the automatic alias's test's
// and the LAN list's Add scenario's to decide.
#include "tcpip/alist.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/product_settings.h"
#include "temp_store.h"

namespace braxcfg::tcpip {
namespace {

using Items = std::vector<AliasEntry*>;

Items items(AList& list) {
    Items out;
    for (list.reset(); AliasEntry* item = list.next();) out.push_back(item);
    return out;
}

AliasEntry entry(const char* name) { return AliasEntry(name, std::nullopt, std::nullopt); }

TEST(AList, KeepsItsLastNodeAndCursorThroughRemovals) {
    AliasEntry a = entry("a"), b = entry("b"), c = entry("c"), d = entry("d"), same = entry("a");
    AList list;
    list.prepend(&a);  // the last node is not known yet
    list.append(&b);
    list.append(&c);
    EXPECT_EQ(list.remove(&c), 0);  // the last node: append must find the new one
    list.append(&a);
    list.prepend(&c);  // keeps the known last node
    list.append(&d);
    EXPECT_EQ(items(list), (Items{&c, &a, &b, &a, &d}));
    EXPECT_EQ(list.remove(&same), 1);  // an equal item is not this very item
    EXPECT_EQ(list.remove(&a), 0);     // the first node holding it
    EXPECT_EQ(items(list), (Items{&c, &b, &a, &d}));

    list.reset();
    EXPECT_EQ(list.next(), &c);
    EXPECT_EQ(list.remove(&b), 0);  // under the cursor: the iteration goes on after it
    EXPECT_EQ(list.next(), &a);
    EXPECT_EQ(list.next(), &d);
    EXPECT_EQ(list.next(), nullptr);
    EXPECT_EQ(list.count(), 3u);
    { const AList copy(list); }  // a second handle going leaves the nodes to the first
    EXPECT_EQ(items(list), (Items{&c, &a, &d}));

    AList single;  // removing the only node, then appending, starts anew
    single.append(&a);
    single.remove(&a);
    single.append(&b);
    EXPECT_EQ(items(single), Items{&b});
}

TEST(AList, LoadsBothAliasListsByNameAndCommitsADevicesOnlyAliasBack) {
    test::TempStore temp;
    using platform::changeDeviceLists;
    changeDeviceLists("Scope1", std::nullopt, "TCPIP0::scope::INSTR");
    changeDeviceLists("Dmm", std::nullopt, "TCPIP0::dmm::INSTR");
    changeDeviceLists("SCOPE1", "gpib0,1", std::nullopt);
    changeDeviceLists("Only", "gpib0,2", std::nullopt);  // an alias in "Devices" only
    AList list;
    list.load();
    const Items got = items(list);
    std::vector<std::string> texts;
    for (const AliasEntry* e : got)
        texts.push_back(e->name().value_or("-") + " " + e->rsrcString().value_or("-") + " " +
                        e->korlAddress().value_or("-") + " " + std::to_string(static_cast<int>(e->state())));
    ASSERT_EQ(texts, (std::vector<std::string>{"Scope1 TCPIP0::scope::INSTR gpib0,1 0", "Dmm TCPIP0::dmm::INSTR - 0",
                                               "Only - gpib0,2 1"}));  // Only: Added, so a commit writes it back

    // Someone changes the "Devices"-only alias behind the list's back: the
    // commit writes the loaded value again. (What a commit does with added,
    // renamed and deleted entries the LAN list's scenarios read back.)
    changeDeviceLists("Only", "elsewhere", std::nullopt);
    EXPECT_EQ(list.commit(), 0);
    list.deleteRecords();
    EXPECT_EQ(platform::lookupDeviceList(platform::kDevicesList, "Only", "-"), "gpib0,2");
}

}  // namespace
}  // namespace braxcfg::tcpip
