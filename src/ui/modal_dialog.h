#pragma once
// The base of every dialog of the system. A dialog is constructed with its
// owner, given its values by the caller, and run once with doModal(); it
// hands its results back through its members.
//
// A derived dialog binds its members to its controls in its constructor
// (dataExchange()), and overrides only the handlers it needs:
//   onInitDialog  the run starts: by default the members are shown
//   onOk          OK, Enter on the default button: by default the controls
//                 are read back (with their checks) and the run ends kIdOk
//   onCancel      Cancel, Escape, the close box: the run ends kIdCancel
// Buttons are wired to accept() (OK) and reject() (Cancel) in the template.
#include <QDialog>

#include "ui/data_exchange.h"
#include "ui/dialog_ids.h"

namespace braxcfg::ui {

class ModalDialog : public QDialog {
    Q_OBJECT

public:
    explicit ModalDialog(QWidget* parent);
    ~ModalDialog() override;

    // Starts the dialog (onInitDialog) and runs it through the modal seam.
    // Returns kIdOk, kIdCancel, or the result a handler ended it with.
    virtual int doModal();

    // save: controls into members, false when a check refused a value (its
    // message has been shown). Otherwise members into controls.
    bool updateData(bool save = true);

    void accept() override;
    void reject() override;

protected:
    virtual void onInitDialog();
    virtual void onOk();
    virtual void onCancel();
    void endDialog(int result);

    DataExchange& dataExchange() { return m_dataExchange; }

private:
    DataExchange m_dataExchange;
};

}  // namespace braxcfg::ui
