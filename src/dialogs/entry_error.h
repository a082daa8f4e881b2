#pragma once
// CEntryError: tells the user why the address typed in CNewDevice was
// refused, which device name it made, and how a valid one looks.
#include <memory>
#include <string>

#include "ui/modal_dialog.h"

namespace Ui {
class EntryErrorTemplate;
}

namespace braxcfg::dialogs {

// The guidance shown when the caller leaves the hint empty.
inline constexpr const char* kDefaultEntryHint =
    "You must specify a valid device name, such as:\n\n\tGPIB0::24\n\n"
    "For GPIB Secondary addresses, use an address such as:\n\n\tGPIB0::10::8";

class CEntryError : public ui::ModalDialog {
    Q_OBJECT

public:
    explicit CEntryError(QWidget* parent);
    ~CEntryError() override;

    // Puts the default hint in place when m_hint is empty, then runs.
    int doModal() override;

    std::string m_errorText;   // the refusing rule's message
    std::string m_deviceName;  // prefix + address as typed
    std::string m_hint;

private:
    std::unique_ptr<Ui::EntryErrorTemplate> m_ui;
};

}  // namespace braxcfg::dialogs
