// What the items of the Help menu do, on the help file set at start-up.
#pragma once

class QWidget;

namespace pollarix {

struct ApplicationState;
class HelpFile;

class HelpMenu {
  public:
    // `owner` is the window that the tip and about windows belong to.
    HelpMenu(ApplicationState& state, HelpFile& help, QWidget& owner)
        : state_(state), help_(help), owner_(owner) {}

    void mnuHelpContents_Click();
    void mnuHelpIndex_Click();
    void mnuHelpSearch_Click();
    // Also when the tips are turned off at start-up.
    void mnuHelpTipOfTheDay_Click();
    void mnuHelpOnlineSupport_Click();
    void mnuHelpSendFeedback_Click();
    void mnuAbout_Click();

  private:
    ApplicationState& state_;
    HelpFile& help_;
    QWidget& owner_;
};

} // namespace pollarix
