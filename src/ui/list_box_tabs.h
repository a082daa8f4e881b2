#pragma once
// Tab stops for a list box whose items are columns joined by a TAB, such as
// "alias<TAB>resource string": the text after each TAB starts at the next
// multiple of the stop, so the columns line up whatever the first one holds.
class QListView;

namespace braxcfg::ui {

// Sets the stop, in dialog units of the view's font (a quarter of its
// average character width), as dialog templates measure.
void setListBoxTabStop(QListView& view, int dialogUnits);

// The stop's distance in pixels from the start of an item's text, so that
// a column caption above the list can line up with it.
double listBoxTabStopDistance(const QListView& view, int dialogUnits);

}  // namespace braxcfg::ui
