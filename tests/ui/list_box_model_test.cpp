#include "ui/list_box_model.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace braxcfg::ui {
namespace {

using Items = std::vector<std::string>;
using Rows = std::vector<int>;

void fill(ListBoxModel& model, const Items& items) {
    for (const std::string& item : items) model.insertString(-1, item);
}

TEST(ListBoxModel, SortedAddComparesFoldedTextAndFollowsTheBinarySearch) {
    const std::tuple<Items, std::string, Items> cases[] = {
        {{"GPIB0::1", "GPIB0::3"}, "gpib0::4", {"GPIB0::1", "GPIB0::3", "gpib0::4"}},
        // Text order, not number order; a prefix goes first; letters fold to
        // lower case, so '_' sorts below them.
        {{"GPIB0::3"}, "GPIB0::24", {"GPIB0::24", "GPIB0::3"}},
        {{"GPIB0::24"}, "GPIB0::2", {"GPIB0::2", "GPIB0::24"}},
        {{"ax"}, "_x", {"_x", "ax"}},
        // An equal item (ignoring case) is found, and the new one goes before it.
        {{"a", "GPIB0::24", "z"}, "gpib0::24", {"a", "gpib0::24", "GPIB0::24", "z"}},
        // Lists filled unsorted: the search probes the middle and trusts the
        // order it finds, so the new item lands where the probes lead.
        {{"x", "y", "a"}, "b", {"b", "x", "y", "a"}},
        {{"a", "z", "b", "c"}, "y", {"a", "y", "z", "b", "c"}},
    };
    for (const auto& [before, added, after] : cases) {
        ListBoxModel model;
        fill(model, before);
        EXPECT_EQ(model.text(model.addString(added)), added);
        EXPECT_EQ(model.items(), after) << "adding " << added;
    }
    ListBoxModel unsorted(false);
    fill(unsorted, {"b"});
    EXPECT_EQ(unsorted.addString("a"), 1);
}

TEST(ListBoxModel, BadIndicesFailWithoutChangeAndSelectionTravelsWithItems) {
    ListBoxModel model;
    fill(model, {"a", "b"});
    for (int bad : {3, -2}) EXPECT_EQ(model.insertString(bad, "x"), ListBoxModel::kError);
    for (int bad : {2, -1}) EXPECT_EQ(model.deleteString(bad), ListBoxModel::kError);
    EXPECT_EQ(model.text(2) + model.text(-1), "");
    EXPECT_EQ(model.insertString(2, "c"), 2);  // at count: the end
    EXPECT_EQ(model.insertString(0, "0"), 0);
    EXPECT_EQ(model.deleteString(1), 3);
    fill(model, {"d", "e"});
    EXPECT_EQ(model.items(), (Items{"0", "b", "c", "d", "e"}));

    for (int row : {3, 0, 4}) model.setSel(row, true);
    EXPECT_EQ(model.selCount(), 3);
    EXPECT_EQ(model.selItems(256), (Rows{0, 3, 4}));
    EXPECT_EQ(model.selItems(2), (Rows{0, 3}));  // the caller's buffer caps the answer
    model.insertString(1, "new");                 // selected items move down with their text
    EXPECT_EQ(model.selItems(256), (Rows{0, 4, 5}));
    model.deleteString(4);  // "d", selected, goes
    EXPECT_EQ(model.selItems(256), (Rows{0, 4}));
    model.setSel(0, false);
    EXPECT_EQ(model.selItems(256), (Rows{4}));
    model.setSel(-1, true);
    EXPECT_EQ(model.selCount(), model.count());
    model.resetContent();
    EXPECT_EQ(model.count() + model.selCount(), 0);
}

}  // namespace
}  // namespace braxcfg::ui
