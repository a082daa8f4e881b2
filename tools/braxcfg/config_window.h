#pragma once
// The configuration tool's main window: the store's interfaces with their
// devices, and the actions a configuration tool offers around the plug-in.
// The plug-in's own work goes through its exports (Set up, Edit, the
// set-up of a new interface, the end of a pass when the window closes); the choice
// flow, which has no export, runs the plug-in's code linked into the tool.
#include <QMainWindow>
#include <memory>
#include <string>
#include <vector>

#include "interface_keys.h"
#include "plugin.h"

class QAction;
class QTreeWidget;

namespace braxcfg::tool {

class ConfigWindow : public QMainWindow {
    Q_OBJECT

public:
    // `plugin` must be loaded and outlive the window.
    explicit ConfigWindow(Plugin& plugin, QWidget* parent = nullptr);
    ~ConfigWindow() override;

    // Reads the store again; the selection stays on the same key.
    void refresh();
    // Selects the row of `key` (tests, and after an addition).
    void selectInterface(const std::string& key);

    QAction* setUpAction() const { return setUp_; }
    QAction* editAction() const { return edit_; }
    QAction* configureAction() const { return configure_; }
    QAction* addAction() const { return add_; }
    QAction* removeAction() const { return remove_; }
    QAction* importAction() const { return import_; }
    QAction* exportAction() const { return export_; }
    QAction* refreshAction() const { return refresh_; }

protected:
    // The end of the configuration pass.
    void closeEvent(QCloseEvent* event) override;

private:
    // The plug-in's export `exportName` (window, interface key) on the
    // selected interface; the store is read again afterwards.
    void callOnSelected(const char* exportName);
    void onSetUp();
    void onEdit();
    void onConfigure();
    void onAdd();
    void onRemove();
    void onImport();
    void onExport();
    void applyControls();
    const InterfaceRow* selectedRow() const;
    void* nativeHandle();
    // Status line text while a long action runs, with a busy cursor.
    void runLong(const std::string& what, const std::function<void()>& action);
    void showError(const std::string& text);

    Plugin& plugin_;
    std::vector<InterfaceRow> rows_;
    QTreeWidget* table_ = nullptr;
    QAction* setUp_ = nullptr;
    QAction* edit_ = nullptr;
    QAction* configure_ = nullptr;
    QAction* add_ = nullptr;
    QAction* remove_ = nullptr;
    QAction* import_ = nullptr;
    QAction* export_ = nullptr;
    QAction* refresh_ = nullptr;
};

}  // namespace braxcfg::tool
