#include "ui/list_box_model.h"

#include <QListView>
#include <algorithm>

#include "ui/qt_text.h"

namespace braxcfg::ui {
namespace {

unsigned char folded(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 'A' && byte <= 'Z') ? static_cast<unsigned char>(byte - 'A' + 'a') : byte;
}

}  // namespace

int listBoxCompare(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const unsigned char left = folded(a[i]);
        const unsigned char right = folded(b[i]);
        if (left != right) return left < right ? -1 : 1;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

std::size_t sortedInsertPosition(const std::vector<std::string>& items, std::string_view text) {
    // The probe order (middle of the inclusive range, rounded down) decides
    // where an item lands in a list that is not in order; keep it as it is.
    std::ptrdiff_t low = 0;
    std::ptrdiff_t high = static_cast<std::ptrdiff_t>(items.size()) - 1;
    while (low <= high) {
        const std::ptrdiff_t middle = (low + high) / 2;
        const int order = listBoxCompare(items[static_cast<std::size_t>(middle)], text);
        if (order == 0) return static_cast<std::size_t>(middle);
        if (order > 0)
            high = middle - 1;
        else
            low = middle + 1;
    }
    return static_cast<std::size_t>(low);
}

ListBoxModel::ListBoxModel(bool sorted, QObject* parent)
    : QAbstractListModel(parent), sorted_(sorted), selection_(this) {}

ListBoxModel::~ListBoxModel() = default;

void ListBoxModel::attach(QListView& view) {
    view.setModel(this);
    // setModel gave the view a selection model of its own; the handlers
    // read this one, so the view must share it.
    QItemSelectionModel* own = view.selectionModel();
    view.setSelectionModel(&selection_);
    if (own != &selection_) delete own;
    view.setSelectionMode(QAbstractItemView::ExtendedSelection);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
}

int ListBoxModel::addString(const std::string& text) {
    const std::size_t position = sorted_ ? sortedInsertPosition(items_, text) : items_.size();
    return insertString(static_cast<int>(position), text);
}

int ListBoxModel::insertString(int index, const std::string& text) {
    if (index == -1) index = count();
    if (index < 0 || index > count()) return kError;
    beginInsertRows(QModelIndex(), index, index);
    items_.insert(items_.begin() + index, text);
    endInsertRows();
    return index;
}

int ListBoxModel::deleteString(int index) {
    if (index < 0 || index >= count()) return kError;
    beginRemoveRows(QModelIndex(), index, index);
    items_.erase(items_.begin() + index);
    endRemoveRows();
    return count();
}

void ListBoxModel::resetContent() {
    beginResetModel();
    items_.clear();
    endResetModel();
}

std::string ListBoxModel::text(int index) const {
    if (index < 0 || index >= count()) return std::string();
    return items_[static_cast<std::size_t>(index)];
}

void ListBoxModel::setSel(int index, bool selected) {
    const auto command = selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect;
    if (index == -1) {
        if (count() > 0) selection_.select(QItemSelection(this->index(0), this->index(count() - 1)), command);
        return;
    }
    if (index < 0 || index >= count()) return;
    selection_.select(this->index(index), command);
}

int ListBoxModel::selCount() const { return static_cast<int>(selection_.selectedRows().size()); }

std::vector<int> ListBoxModel::selItems(std::size_t maxItems) const {
    std::vector<int> result;
    for (int row = 0; row < count() && result.size() < maxItems; ++row)
        if (selection_.isRowSelected(row, QModelIndex())) result.push_back(row);
    return result;
}

int ListBoxModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant ListBoxModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) return QVariant();
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return QVariant();
    return toQString(items_[static_cast<std::size_t>(index.row())]);
}

}  // namespace braxcfg::ui
