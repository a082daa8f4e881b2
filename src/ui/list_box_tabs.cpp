#include "ui/list_box_tabs.h"

#include <QApplication>
#include <QFontMetrics>
#include <QListView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTextOption>

namespace braxcfg::ui {
namespace {

// The platform's average character width: the mean over the 52 letters.
qreal averageCharWidth(const QFont& font) {
    static const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    return QFontMetricsF(font).horizontalAdvance(letters) / letters.size();
}

qreal tabStopDistance(const QFont& font, int dialogUnits) { return averageCharWidth(font) * dialogUnits / 4; }

// Draws the item as the style does (background, selection, focus), then
// its text with the list's own tab stop.
class TabStopDelegate : public QStyledItemDelegate {
public:
    TabStopDelegate(int dialogUnits, QObject* parent) : QStyledItemDelegate(parent), dialogUnits_(dialogUnits) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QStyleOptionViewItem item = option;
        initStyleOption(&item, index);
        const QStyle* style = item.widget != nullptr ? item.widget->style() : QApplication::style();
        const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &item, item.widget);
        const QString text = item.text;
        item.text.clear();
        style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

        QTextOption layout(Qt::AlignLeft | Qt::AlignVCenter);
        layout.setWrapMode(QTextOption::NoWrap);
        layout.setTabStopDistance(tabStopDistance(item.font, dialogUnits_));
        const bool selected = (item.state & QStyle::State_Selected) != 0;
        painter->save();
        painter->setFont(item.font);
        painter->setPen(item.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
        // The same inner margin the style keeps around item text.
        const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, item.widget) + 1;
        painter->drawText(QRectF(textRect.adjusted(margin, 0, -margin, 0)), text, layout);
        painter->restore();
    }

private:
    int dialogUnits_;
};

}  // namespace

double listBoxTabStopDistance(const QListView& view, int dialogUnits) {
    return tabStopDistance(view.font(), dialogUnits);
}

void setListBoxTabStop(QListView& view, int dialogUnits) {
    QAbstractItemDelegate* previous = view.itemDelegate();
    view.setItemDelegate(new TabStopDelegate(dialogUnits, &view));
    if (previous != nullptr && previous->parent() == &view) delete previous;
}

}  // namespace braxcfg::ui
