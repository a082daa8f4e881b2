#include "ui/list_box_model.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QImage>
#include <QListView>
#include <QTest>

#include "dialog_test_support.h"
#include "ui/list_box_tabs.h"

namespace braxcfg::ui {
namespace {

void fill(ListBoxModel& model, const std::vector<std::string>& items) {
    for (const std::string& item : items) model.insertString(-1, item);
}

TEST(ListBoxCompare, FoldsLettersOnlyAndOrdersPrefixesFirst) {
    struct Case {
        const char* a;
        const char* b;
        int sign;
    };
    const Case cases[] = {
        {"GPIB0::24", "gpib0::24", 0},
        {"abc", "ABD", -1},
        {"GPIB0::24", "GPIB0::3", -1},  // text order, not number order
        {"GPIB0::2", "GPIB0::24", -1},  // a prefix goes first
        {"_x", "ax", -1},               // '_' sorts below the folded letters
        {"\tTCPIP0::h", "a\tTCPIP0::h", -1},
        {"", "", 0},
    };
    for (const Case& c : cases) {
        const int forward = listBoxCompare(c.a, c.b);
        const int backward = listBoxCompare(c.b, c.a);
        EXPECT_EQ((forward > 0) - (forward < 0), c.sign) << c.a << " vs " << c.b;
        EXPECT_EQ((backward > 0) - (backward < 0), -c.sign) << c.b << " vs " << c.a;
    }
}

TEST(ListBoxModel, SortedAddFollowsTheBinarySearch) {
    struct Case {
        std::vector<std::string> before;
        std::string added;
        std::vector<std::string> after;
    };
    const Case cases[] = {
        {{}, "GPIB0::5", {"GPIB0::5"}},
        {{"GPIB0::1", "GPIB0::3"}, "GPIB0::2", {"GPIB0::1", "GPIB0::2", "GPIB0::3"}},
        {{"GPIB0::1", "GPIB0::3"}, "gpib0::4", {"GPIB0::1", "GPIB0::3", "gpib0::4"}},
        // An equal item (ignoring case) is found, and the new one goes before it.
        {{"a", "GPIB0::24", "z"}, "gpib0::24", {"a", "gpib0::24", "GPIB0::24", "z"}},
        // Lists filled unsorted: the search probes the middle and trusts the
        // order it finds, so the new item lands where the probes lead.
        {{"d", "a", "b"}, "c", {"d", "a", "b", "c"}},
        {{"x", "y", "a"}, "b", {"b", "x", "y", "a"}},
        {{"a", "z", "b", "c"}, "y", {"a", "y", "z", "b", "c"}},
        {{"GPIB0::9", "GPIB0::10", "GPIB0::2"}, "GPIB0::11", {"GPIB0::9", "GPIB0::10", "GPIB0::11", "GPIB0::2"}},
    };
    for (const Case& c : cases) {
        ListBoxModel model;
        fill(model, c.before);
        const int index = model.addString(c.added);
        EXPECT_EQ(model.items(), c.after) << "adding " << c.added;
        EXPECT_EQ(model.text(index), c.added);
    }
}

TEST(ListBoxModel, UnsortedListAppendsOnAdd) {
    ListBoxModel model(false);
    model.addString("b");
    model.addString("a");
    EXPECT_EQ(model.items(), (std::vector<std::string>{"b", "a"}));
}

TEST(ListBoxModel, PositionsOutOfRangeFailWithoutChange) {
    ListBoxModel model;
    fill(model, {"a", "b"});
    EXPECT_EQ(model.insertString(3, "x"), ListBoxModel::kError);
    EXPECT_EQ(model.insertString(-2, "x"), ListBoxModel::kError);
    EXPECT_EQ(model.deleteString(2), ListBoxModel::kError);
    EXPECT_EQ(model.deleteString(-1), ListBoxModel::kError);
    EXPECT_EQ(model.items(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(model.text(2), "");
    EXPECT_EQ(model.text(-1), "");

    EXPECT_EQ(model.insertString(2, "c"), 2);  // at count: the end
    EXPECT_EQ(model.insertString(0, "0"), 0);
    EXPECT_EQ(model.deleteString(1), 3);
    EXPECT_EQ(model.items(), (std::vector<std::string>{"0", "b", "c"}));
}

TEST(ListBoxModel, SelectionIsAscendingCappedAndTravelsWithItems) {
    ListBoxModel model;
    fill(model, {"a", "b", "c", "d", "e"});
    model.setSel(3, true);
    model.setSel(0, true);
    model.setSel(4, true);
    EXPECT_EQ(model.selCount(), 3);
    EXPECT_EQ(model.selItems(256), (std::vector<int>{0, 3, 4}));
    EXPECT_EQ(model.selItems(2), (std::vector<int>{0, 3}));
    EXPECT_TRUE(model.selItems(0).empty());

    model.insertString(1, "new");  // selected items move down with their text
    EXPECT_EQ(model.selItems(256), (std::vector<int>{0, 4, 5}));
    model.deleteString(4);  // "d", selected, goes
    EXPECT_EQ(model.selItems(256), (std::vector<int>{0, 4}));
    EXPECT_EQ(model.text(4), "e");

    model.setSel(0, false);
    EXPECT_EQ(model.selItems(256), (std::vector<int>{4}));
    model.setSel(-1, true);
    EXPECT_EQ(model.selCount(), model.count());
    model.resetContent();
    EXPECT_EQ(model.count(), 0);
    EXPECT_EQ(model.selCount(), 0);
}

TEST(ListBoxModel, ViewShowsItemsAndSharesTheSelection) {
    ListBoxModel model;
    fill(model, {"GPIB0::1", "GPIB0::2", "GPIB0::3"});
    QListView view;
    model.attach(view);
    view.show();
    ASSERT_EQ(view.model()->rowCount(), 3);
    EXPECT_EQ(view.model()->index(1, 0).data().toString(), QStringLiteral("GPIB0::2"));

    // Extended selection: a click picks one, Ctrl+click adds another.
    const auto rowCentre = [&](int row) { return view.visualRect(model.index(row)).center(); };
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, rowCentre(2));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ControlModifier, rowCentre(0));
    EXPECT_EQ(model.selItems(256), (std::vector<int>{0, 2}));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, rowCentre(1));
    EXPECT_EQ(model.selItems(256), (std::vector<int>{1}));
}

// Where the last piece of ink in a row of pixels starts: the column after
// the TAB, for the items below.
int lastInkStart(const QImage& image, const QRect& row) {
    const auto inked = [&](int x) {
        for (int y = row.top(); y <= row.bottom(); ++y)
            if (qGray(image.pixel(x, y)) < 128) return true;
        return false;
    };
    int x = row.right();
    while (x > row.left() && !inked(x)) --x;
    while (x > row.left() && inked(x - 1)) --x;
    return x;
}

TEST(ListBoxTabs, TextAfterTheTabLinesUpAtTheStop) {
    ListBoxModel model;
    fill(model, {"a\tI", "abcdefghij\tI", "\tI"});
    QListView view;
    view.resize(400, 120);
    model.attach(view);
    setListBoxTabStop(view, 52);
    view.show();
    const QImage image = view.viewport()->grab().toImage();
    // 52 dialog units: 13 average characters.
    const QString letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const qreal stop = QFontMetricsF(view.font()).horizontalAdvance(letters) / letters.size() * 13;
    std::vector<int> starts;
    for (int row = 0; row < model.count(); ++row)
        starts.push_back(lastInkStart(image, view.visualRect(model.index(row))));
    EXPECT_EQ(starts[1], starts[0]);
    EXPECT_EQ(starts[2], starts[0]);
    EXPECT_GE(starts[0], static_cast<int>(stop));
    EXPECT_LT(starts[0], static_cast<int>(stop) + 12);  // the stop plus the item's margin
    model.setSel(1, true);
    test::screenshot(view, "list_box_tabs");
}

}  // namespace
}  // namespace braxcfg::ui
