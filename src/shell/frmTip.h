// The tip of the day: shows one line of the tip file at a time and remembers how far it got.
#pragma once

#include <QDialog>
#include <QStringList>

#include <cstdint>

class QCheckBox;
class QLabel;

namespace pollarix {

struct ApplicationState;

// What the settings of the tips lie under: the executable's name, without extension. All other
// settings lie under a fixed name.
QString TipsApplication();

// The setting "Show Tips at Startup": whether the tips show without being asked for. Throws
// TypeMismatch when it is no number.
bool ShowTipsAtStartup(const ApplicationState& state);

class frmTip : public QDialog {
    Q_OBJECT
  public:
    // Loads the tips and shows the one after the tip shown last. Throws TypeMismatch when what is
    // remembered is no number, Subscript when it lies below the first tip.
    frmTip(ApplicationState& state, QWidget* parent);

    // Reads the tips from a file and steps to the next. False when there is no such file.
    bool LoadTips(const QString& path);
    void DoNextTip();
    void DisplayCurrentTip();

  private:
    void BuildWindow();
    void chkLoadTipsAtStartup_Click();

    ApplicationState& state_;
    QStringList tips_;
    std::int16_t currentTip_ = 0; // from 1
    QLabel* lblTipText_ = nullptr;
    QCheckBox* chkLoadTipsAtStartup_ = nullptr;
};

} // namespace pollarix
