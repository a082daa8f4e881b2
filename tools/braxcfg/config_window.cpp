#include "config_window.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>
#include <QTreeWidget>

#include "config_window_logic.h"
#include "entry/braxcfg_app.h"
#include "platform/store.h"
#include "reg_files.h"
#include "ui/message_box.h"
#include "ui/modal.h"
#include "ui/qt_text.h"
#include "ui_add_interface.h"

namespace braxcfg::tool {
namespace {

using ui::toQString;
using ui::toStdString;

constexpr int kKeyRole = Qt::UserRole;

}  // namespace

ConfigWindow::ConfigWindow(Plugin& plugin, QWidget* parent) : QMainWindow(parent), plugin_(plugin) {
    setWindowTitle(QStringLiteral("braxcfg - VISA interfaces"));
    table_ = new QTreeWidget(this);
    QStringList headers;
    for (const char* column : kInterfaceColumns) headers << QString::fromLatin1(column);
    table_->setHeaderLabels(headers);
    table_->setRootIsDecorated(true);
    table_->setAllColumnsShowFocus(true);
    table_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    setCentralWidget(table_);

    const auto makeAction = [this](const char* text, QKeySequence shortcut, void (ConfigWindow::*handler)()) {
        auto* action = new QAction(QString::fromLatin1(text), this);
        action->setShortcut(shortcut);
        connect(action, &QAction::triggered, this, handler);
        return action;
    };
    setUp_ = makeAction("&Set up", QKeySequence(Qt::CTRL | Qt::Key_U), &ConfigWindow::onSetUp);
    edit_ = makeAction("&Edit devices...", QKeySequence(Qt::CTRL | Qt::Key_E), &ConfigWindow::onEdit);
    configure_ = makeAction("&Configure...", QKeySequence(Qt::CTRL | Qt::Key_G), &ConfigWindow::onConfigure);
    add_ = makeAction("&Add interface...", QKeySequence(Qt::CTRL | Qt::Key_N), &ConfigWindow::onAdd);
    remove_ = makeAction("&Remove interface", QKeySequence::Delete, &ConfigWindow::onRemove);
    import_ = makeAction("&Import .reg...", QKeySequence(Qt::CTRL | Qt::Key_I), &ConfigWindow::onImport);
    export_ = makeAction("E&xport .reg...", QKeySequence(Qt::CTRL | Qt::Key_S), &ConfigWindow::onExport);
    refresh_ = makeAction("Re&fresh", QKeySequence::Refresh, &ConfigWindow::refresh);
    auto* quit = new QAction(QStringLiteral("&Close"), this);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quit, &QAction::triggered, this, &QWidget::close);

    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    file->addActions({import_, export_, refresh_});
    file->addSeparator();
    file->addAction(quit);
    menuBar()->addMenu(QStringLiteral("&Interface"))->addActions({add_, setUp_, edit_, configure_, remove_});
    QToolBar* tools = addToolBar(QStringLiteral("Actions"));
    tools->setToolButtonStyle(Qt::ToolButtonTextOnly);
    tools->addActions({add_, setUp_, edit_, configure_, remove_});
    tools->addSeparator();
    tools->addActions({import_, export_, refresh_});

    const platform::StoreStatus& store = platform::currentStoreStatus();
    statusBar()->addPermanentWidget(new QLabel(toQString(storeStatusLine(store.path, store.writable)), this), 1);
    connect(table_, &QTreeWidget::itemSelectionChanged, this, &ConfigWindow::applyControls);
    connect(table_, &QTreeWidget::itemDoubleClicked, this, [this] {
        if (edit_->isEnabled()) onEdit();
    });
    resize(760, 420);
    refresh();
}

ConfigWindow::~ConfigWindow() = default;

void ConfigWindow::refresh() {
    const InterfaceRow* before = selectedRow();
    const std::string selected = before != nullptr ? before->key : std::string();
    rows_ = readInterfaces();
    table_->clear();
    for (const InterfaceRow& row : rows_) {
        QStringList cells;
        for (const std::string& cell : interfaceCells(row)) cells << toQString(cell);
        auto* item = new QTreeWidgetItem(table_, cells);
        item->setData(0, kKeyRole, toQString(row.key));
        for (const std::string& device : row.devices) {
            auto* child = new QTreeWidgetItem(item, QStringList(toQString(device)));
            child->setFirstColumnSpanned(true);
        }
        item->setExpanded(true);
    }
    selectInterface(selected);
    applyControls();
}

void ConfigWindow::selectInterface(const std::string& key) {
    for (int i = 0; i < table_->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = table_->topLevelItem(i);
        if (toStdString(item->data(0, kKeyRole).toString()) == key) {
            table_->setCurrentItem(item);
            return;
        }
    }
}

const InterfaceRow* ConfigWindow::selectedRow() const {
    QTreeWidgetItem* item = table_->currentItem();
    if (item == nullptr || !item->isSelected()) return nullptr;
    if (item->parent() != nullptr) item = item->parent();
    const std::string key = toStdString(item->data(0, kKeyRole).toString());
    for (const InterfaceRow& row : rows_)
        if (row.key == key) return &row;
    return nullptr;
}

void ConfigWindow::applyControls() {
    const InterfaceRow* row = selectedRow();
    auto* editable = plugin_.get<int(const char*)>("isVisaIntfEditable");
    const bool canEdit = row != nullptr && editable != nullptr && editable(row->key.c_str()) != 0;
    const WindowActions actions = windowActions(row, canEdit, platform::currentStoreStatus().writable);
    setUp_->setEnabled(actions.setUp);
    edit_->setEnabled(actions.edit);
    configure_->setEnabled(actions.configure);
    add_->setEnabled(actions.add);
    remove_->setEnabled(actions.remove);
    import_->setEnabled(actions.import);
}

void* ConfigWindow::nativeHandle() { return reinterpret_cast<void*>(winId()); }

void ConfigWindow::runLong(const std::string& what, const std::function<void()>& action) {
    statusBar()->showMessage(toQString(what));
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    action();
    QApplication::restoreOverrideCursor();
    statusBar()->clearMessage();
}

void ConfigWindow::showError(const std::string& text) {
    ui::messageBox(this, text, "braxcfg", ui::MessageIcon::Exclamation);
}

void ConfigWindow::callOnSelected(const char* exportName) {
    const InterfaceRow* row = selectedRow();
    auto* call = plugin_.get<void(HWND, const char*)>(exportName);
    if (row == nullptr || call == nullptr) return;
    call(nativeHandle(), row->key.c_str());
    refresh();
}

void ConfigWindow::onSetUp() { callOnSelected("setupVisaIntf"); }

void ConfigWindow::onEdit() { callOnSelected("editVisaIntf"); }

void ConfigWindow::onConfigure() {
    const InterfaceRow* row = selectedRow();
    if (row == nullptr) return;
    entry::CBraxcfgApp app;
    app.ConfigureByChoice(entry::HostWindow(nativeHandle()), row->key);
    refresh();
}

void ConfigWindow::onAdd() {
    QDialog dialog(this);
    Ui::AddInterfaceForm form;
    form.setupUi(&dialog);
    for (const std::string& type : addableTypeWords()) form.typeCombo->addItem(toQString(type));
    const auto applySocket = [&form] {
        const bool allowed = socketAllowed(toStdString(form.typeCombo->currentText()));
        form.socketCheck->setEnabled(allowed);
        if (!allowed) form.socketCheck->setChecked(false);
    };
    connect(form.typeCombo, &QComboBox::currentTextChanged, &dialog, applySocket);
    applySocket();
    if (ui::runModal(dialog) != QDialog::Accepted) return;

    NewInterface request;
    request.type = toStdString(form.typeCombo->currentText());
    if (form.boardSpin->value() >= 0) request.board = form.boardSpin->value();
    request.socket = form.socketCheck->isChecked();
    const AddedInterface added = addInterface(request);
    if (!added.error.empty()) {
        showError(added.error);
        return;
    }
    if (auto* setup = plugin_.get<void(HWND, const char*)>("setupVisaIntf")) setup(nativeHandle(), added.key.c_str());
    refresh();
    selectInterface(added.key);
}

void ConfigWindow::onRemove() {
    const InterfaceRow* row = selectedRow();
    if (row == nullptr) return;
    QMessageBox question(QMessageBox::Question, QStringLiteral("Remove interface"), toQString(removeQuestion(*row)),
                         QMessageBox::NoButton, this);
    QPushButton* yes = question.addButton(QStringLiteral("&Remove"), QMessageBox::AcceptRole);
    question.setDefaultButton(question.addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole));
    ui::runModal(question);
    if (question.clickedButton() != yes) return;
    if (const std::string failure = removeInterface(row->key); !failure.empty()) showError(failure);
    refresh();
}

void ConfigWindow::onImport() {
    QFileDialog chooser(this, QStringLiteral("Import a .reg file"), QString(),
                        QStringLiteral("Registry files (*.reg);;All files (*)"));
    chooser.setOption(QFileDialog::DontUseNativeDialog);
    chooser.setFileMode(QFileDialog::ExistingFile);
    if (ui::runModal(chooser) != QDialog::Accepted || chooser.selectedFiles().isEmpty()) return;
    const std::string path = toStdString(chooser.selectedFiles().first());
    std::string failure;
    runLong("Importing " + path + "...", [&] { failure = importRegFileFrom(path); });
    if (!failure.empty()) showError(failure);
    refresh();
}

void ConfigWindow::onExport() {
    QFileDialog chooser(this, QStringLiteral("Export the store as a .reg file"), QString(),
                        QStringLiteral("Registry files (*.reg)"));
    chooser.setOption(QFileDialog::DontUseNativeDialog);
    chooser.setAcceptMode(QFileDialog::AcceptSave);
    chooser.setDefaultSuffix(QStringLiteral("reg"));
    if (ui::runModal(chooser) != QDialog::Accepted || chooser.selectedFiles().isEmpty()) return;
    const std::string path = toStdString(chooser.selectedFiles().first());
    std::string failure;
    // The format Windows writes, so the file moves to a Windows machine as it is.
    runLong("Exporting to " + path + "...",
            [&] { failure = exportRegFileTo(path, "", platform::regfile::RegTextEncoding::Utf16); });
    if (!failure.empty()) showError(failure);
}

void ConfigWindow::closeEvent(QCloseEvent* event) {
    if (auto* endPass = plugin_.get<void(HWND)>("doVisaEndStuff")) {
        runLong("Ending the configuration pass...", [&] { endPass(nativeHandle()); });
    }
    event->accept();
}

}  // namespace braxcfg::tool
