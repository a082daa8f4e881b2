#include "ui/data_exchange.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>

#include "ui/message_box.h"
#include "ui/qt_text.h"

namespace braxcfg::ui {
namespace {

// The two text bindings differ only in their control's class.
template <typename Control>
std::function<void()> loadText(Control* control, std::string& value) {
    return [control, &value] {
        const QString shown = toQString(value);
        // Setting an unchanged text would move the caret and notify the
        // dialog of an edit that did not happen.
        if (control->text() != shown) control->setText(shown);
    };
}

template <typename Control>
std::function<bool(QWidget*)> saveText(Control* control, std::string& value, int maxChars) {
    return [control, &value, maxChars](QWidget* owner) {
        if (const auto refused = firstUnencodable(control->text())) {
            messageBox(owner, unencodableMessage(*refused), std::string(), MessageIcon::Exclamation);
            control->setFocus();
            return false;
        }
        value = toStdString(control->text());
        if (maxChars <= 0 || value.size() <= static_cast<std::size_t>(maxChars)) return true;
        messageBox(owner, tooLongMessage(maxChars), std::string(), MessageIcon::Exclamation);
        control->setFocus();
        return false;
    };
}

}  // namespace

std::string unencodableMessage(const std::string& character) {
    return "The character " + character +
           " cannot be stored. Please use only characters of the Windows-1252 code page.";
}

std::string tooLongMessage(int maxChars) {
    return "Please enter no more than " + std::to_string(maxChars) + " characters.";
}

void DataExchange::text(QLineEdit* control, std::string& value, int maxChars) {
    bindings_.push_back({loadText(control, value), saveText(control, value, maxChars)});
}

void DataExchange::text(QLabel* control, std::string& value, int maxChars) {
    bindings_.push_back({loadText(control, value), saveText(control, value, maxChars)});
}

void DataExchange::radio(std::vector<QAbstractButton*> group, int& value) {
    bindings_.push_back({[group, &value] {
                             for (std::size_t i = 0; i < group.size(); ++i) {
                                 // An exclusive group cannot be cleared by
                                 // unchecking; lift the rule while showing.
                                 const bool exclusive = group[i]->autoExclusive();
                                 group[i]->setAutoExclusive(false);
                                 group[i]->setChecked(static_cast<int>(i) == value);
                                 group[i]->setAutoExclusive(exclusive);
                             }
                         },
                         [group, &value](QWidget*) {
                             value = -1;
                             for (std::size_t i = 0; i < group.size(); ++i)
                                 if (group[i]->isChecked()) {
                                     value = static_cast<int>(i);
                                     break;
                                 }
                             return true;
                         }});
}

void DataExchange::check(QAbstractButton* control, int& value) {
    bindings_.push_back({[control, &value] { control->setChecked(value != 0); },
                         [control, &value](QWidget*) {
                             value = control->isChecked() ? 1 : 0;
                             return true;
                         }});
}

void DataExchange::load() const {
    for (const Binding& binding : bindings_) binding.load();
}

bool DataExchange::save(QWidget* owner) const {
    for (const Binding& binding : bindings_)
        if (!binding.save(owner)) return false;
    return true;
}

}  // namespace braxcfg::ui
