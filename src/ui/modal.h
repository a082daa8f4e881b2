#pragma once
// The one place where a dialog runs modally. Production runs the dialog's
// own event loop (QDialog::exec); a test installs a handler that drives the
// dialog's widgets instead (see ModalScript). A dialog that opens another
// from one of its handlers comes through here again, so nested runs are
// handled the same way.
#include <functional>

class QDialog;

namespace braxcfg::ui {

// Runs `dialog` until it ends and returns the result it ended with
// (kIdOk, kIdCancel, or what its handler gave). The dialog is expected to
// be set up already: its controls show its values.
int runModal(QDialog& dialog);

// Replaces the production run (tests); an empty handler restores it.
// Returns the handler that was installed before.
using ModalHandler = std::function<int(QDialog&)>;
ModalHandler setModalHandler(ModalHandler handler);

}  // namespace braxcfg::ui
