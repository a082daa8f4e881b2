#pragma once
// The items of a list box with the platform list box's rules, which the
// dialogs' item order depends on. A QListView shows the model (attach()),
// and the selection lives in the model's selection model, so the handlers
// ask the model, not the view, what is selected.
#include <QAbstractListModel>
#include <QItemSelectionModel>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class QListView;

namespace braxcfg::ui {

// The item order of a sorted list box: case-insensitive, byte by byte
// (ASCII letters folded to lower case). <0, 0, >0 as for strcmp.
int listBoxCompare(std::string_view a, std::string_view b);

// Where a sorted add puts `text` among `items`: a binary search that trusts
// the items to be in order, as the platform list box does. Over items that
// were inserted unsorted it finds the place that search leads to, not the
// "right" one. An item that compares equal is found and `text` goes before
// it.
std::size_t sortedInsertPosition(const std::vector<std::string>& items, std::string_view text);

class ListBoxModel : public QAbstractListModel {
    Q_OBJECT

public:
    // Returned by the calls that fail on a bad index.
    static constexpr int kError = -1;

    // `sorted`: addString inserts in order; otherwise it appends.
    explicit ListBoxModel(bool sorted = true, QObject* parent = nullptr);
    ~ListBoxModel() override;

    // Makes `view` show this model with extended multiple selection.
    void attach(QListView& view);

    // Adds an item (sorted or at the end); returns its index.
    int addString(const std::string& text);
    // Inserts at `index`, -1 for the end; kError when `index` > count().
    int insertString(int index, const std::string& text);
    // Returns the number of items left, or kError for a bad index.
    int deleteString(int index);
    void resetContent();
    int count() const { return static_cast<int>(items_.size()); }
    // The item's text; empty when `index` is not below count().
    std::string text(int index) const;
    const std::vector<std::string>& items() const { return items_; }

    // Selection. `index` -1 selects or clears every item.
    void setSel(int index, bool selected);
    int selCount() const;
    // The selected indices in ascending order, at most `maxItems` of them
    // (the caller's buffer size): the first ones, later ones are dropped.
    std::vector<int> selItems(std::size_t maxItems) const;
    QItemSelectionModel& selectionModel() { return selection_; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    bool sorted_;
    std::vector<std::string> items_;
    QItemSelectionModel selection_;
};

}  // namespace braxcfg::ui
