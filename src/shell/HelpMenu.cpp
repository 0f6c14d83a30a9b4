#include "shell/HelpMenu.h"

#include "document/ApplicationState.h"
#include "shell/Addresses.h"
#include "shell/frmAbout.h"
#include "shell/frmTip.h"
#include "shell/help/HelpFile.h"

namespace pollarix {

void HelpMenu::mnuHelpContents_Click() {
    help_.ShowTopic(HelpFile::Contents);
}

void HelpMenu::mnuHelpIndex_Click() {
    help_.ShowIndex();
}

void HelpMenu::mnuHelpSearch_Click() {
    help_.ShowSearch();
}

void HelpMenu::mnuHelpTipOfTheDay_Click() {
    frmTip(state_, &owner_).exec();
}

void HelpMenu::mnuHelpOnlineSupport_Click() {
    state_.dialogs.OpenUrl(SupportPage);
}

void HelpMenu::mnuHelpSendFeedback_Click() {
    state_.dialogs.OpenFile(QString("mailto:%1").arg(SupportAddress));
}

void HelpMenu::mnuAbout_Click() {
    frmAbout(state_.dialogs, &owner_).exec();
}

} // namespace pollarix
