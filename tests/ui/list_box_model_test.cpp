#include "ui/list_box_model.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QImage>
#include <QListView>

#include "dialog_test_support.h"
#include "ui/list_box_tabs.h"

namespace braxcfg::ui {
namespace {

using Items = std::vector<std::string>;
using Rows = std::vector<int>;

void fill(ListBoxModel& model, const Items& items) {
    for (const std::string& item : items) model.insertString(-1, item);
}

TEST(ListBoxModel, SortedAddComparesFoldedTextAndFollowsTheBinarySearch) {
    const std::tuple<Items, std::string, Items> cases[] = {
        {{}, "GPIB0::5", {"GPIB0::5"}},
        {{"GPIB0::1", "GPIB0::3"}, "GPIB0::2", {"GPIB0::1", "GPIB0::2", "GPIB0::3"}},
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
        {{"d", "a", "b"}, "c", {"d", "a", "b", "c"}},
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

// The view shows store text (cp1252), lines the text after a TAB up at the
// tab stop, and shares the model's selection.
TEST(ListBoxModel, ViewShowsItemsWithTabStopsAndSharesTheSelection) {
    ListBoxModel model;
    fill(model, {"a\tI", "abcdefghij\tI", "\tI", "caf\xe9\tI"});
    QListView view;
    view.resize(400, 120);
    model.attach(view);
    setListBoxTabStop(view, 52);
    view.show();
    EXPECT_EQ(view.model()->index(3, 0).data().toString(), QString::fromUtf8("caf\u00e9\tI"));
    const QImage image = view.viewport()->grab().toImage();
    // The right edge of the ink in a row: that of the "I" after the TAB.
    const auto inkEnd = [&](int row) {
        const QRect rect = view.visualRect(model.index(row));
        for (int x = rect.right(); x > rect.left(); --x)
            for (int y = rect.top(); y <= rect.bottom(); ++y)
                if (qGray(image.pixel(x, y)) < 128) return x;
        return -1;
    };
    // 52 dialog units: 13 average characters.
    const QString letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const qreal stop = QFontMetricsF(view.font()).horizontalAdvance(letters) / letters.size() * 13;
    for (int row = 1; row < model.count(); ++row) EXPECT_EQ(inkEnd(row), inkEnd(0)) << row;
    EXPECT_GE(inkEnd(0), static_cast<int>(stop));
    EXPECT_LT(inkEnd(0), static_cast<int>(stop) + 20);  // the stop, the item's margin and the "I"
    // Extended selection: a click picks one, Ctrl+click adds another.
    const auto click = [&](int row, Qt::KeyboardModifiers keys) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, keys, view.visualRect(model.index(row)).center());
    };
    click(2, Qt::NoModifier);
    click(0, Qt::ControlModifier);
    EXPECT_EQ(model.selItems(256), (Rows{0, 2}));
    click(1, Qt::NoModifier);
    EXPECT_EQ(model.selItems(256), (Rows{1}));
    test::screenshot(view, "list_box_tabs");
}

}  // namespace
}  // namespace braxcfg::ui
