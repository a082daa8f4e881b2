#pragma once
// Moves a dialog's values to its controls and back. A dialog binds each
// member to its control once, in its constructor; load() shows the members
// in the controls, save() reads the controls into the members and applies
// the checks bound with them.
#include <functional>
#include <string>
#include <vector>

class QAbstractButton;
class QLabel;
class QLineEdit;
class QWidget;

namespace braxcfg::ui {

class DataExchange {
public:
    // `maxChars` > 0: save() refuses a longer text with the platform's
    // message for a text that is too long, focusing the control.
    void text(QLineEdit* control, std::string& value, int maxChars = 0);
    void text(QLabel* control, std::string& value, int maxChars = 0);
    // value = index of the checked button within `group`, -1 when none is.
    void radio(std::vector<QAbstractButton*> group, int& value);
    // value = 1 checked, 0 unchecked.
    void check(QAbstractButton* control, int& value);

    void load() const;
    // Reads the bindings in the order they were made; the first failing
    // check stops the exchange (its message shown, owned by `owner`) and
    // gives false. Values read before it keep what was read.
    bool save(QWidget* owner) const;

private:
    struct Binding {
        std::function<void()> load;
        std::function<bool(QWidget* owner)> save;
    };
    std::vector<Binding> bindings_;
};

// "Please enter no more than N characters."
std::string tooLongMessage(int maxChars);
// What a text control says when it holds a character the store cannot
// keep (`character` as "U+4E2D"); the text is refused, not changed.
std::string unencodableMessage(const std::string& character);

}  // namespace braxcfg::ui
