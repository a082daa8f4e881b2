#include "dialogs/config_choice.h"

#include <QPushButton>
#include <array>

#include "dialogs/choice_help.h"
#include "ui/message_box.h"
#include "ui_config_choice.h"

namespace braxcfg::dialogs {
namespace {

constexpr int kMaxIntfNameChars = 80;

struct ChoiceHelpText {
    const char* title;
    const char* advantages;
    const char* disadvantages;
};

// One entry per radio button, in the group's order.
constexpr std::array<ChoiceHelpText, 3> kChoiceHelp{{
    {"Identify all known devices once now (recommended).", "Faster run-time execution.\nEasy Configuration.",
     "Must re-run configuration tool to add new instruments."},
    {"Automatically identify all known devices at run time.",
     "No need to re-run configuration tool when new instruments are added.",
     "Performance: viOpenDefaultRM takes 1/3 second per interface configured this way. For Remote GPIB "
     "interfaces (over the LAN), it can take substantially longer."},
    {"Manually configure devices on this interface.", "Most Flexible.",
     "Requires more manual steps during configuration process."},
}};

}  // namespace

CConfigChoice::CConfigChoice(QWidget* parent)
    : ui::ModalDialog(parent), m_ui(std::make_unique<Ui::ConfigChoiceTemplate>()) {
    m_ui->setupUi(this);
    dataExchange().radio({m_ui->choiceRadio0, m_ui->choiceRadio1, m_ui->choiceRadio2}, m_choice);
    dataExchange().text(m_ui->intfNameLabel, m_intfName, kMaxIntfNameChars);
    const std::array<QPushButton*, 3> helpButtons{m_ui->helpButton0, m_ui->helpButton1, m_ui->helpButton2};
    for (int choice = 0; choice < static_cast<int>(helpButtons.size()); ++choice)
        connect(helpButtons[static_cast<std::size_t>(choice)], &QPushButton::clicked, this,
                [this, choice] { onHelp(choice); });
}

CConfigChoice::~CConfigChoice() = default;

void CConfigChoice::onOk() {
    // The test looks at the choice as it stood before this press, before
    // the radio group is read: the caller's preset decides, and the
    // group's selection is what the choice becomes.
    if (m_choice >= 0 && m_choice <= 2) {
        ui::ModalDialog::onOk();
        return;
    }
    ui::messageBox(this, kNoChoiceMessage, std::string(), ui::MessageIcon::None);
}

void CConfigChoice::onHelp(int choice) {
    const ChoiceHelpText& text = kChoiceHelp[static_cast<std::size_t>(choice)];
    CChoiceHelp help(this);
    help.m_title = text.title;
    help.m_advantages = text.advantages;
    help.m_disadvantages = text.disadvantages;
    help.doModal();
}

}  // namespace braxcfg::dialogs
