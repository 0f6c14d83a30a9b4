// The dialog that lists the answer scales of the survey and leads to the making of a new one.
#pragma once

#include <QDialog>

#include "document/ApplicationState.h"
#include "platform/controls/ListBox.h"

namespace pollarix {

class frmMatrixDefine : public QDialog {
    Q_OBJECT
  public:
    frmMatrixDefine(ApplicationState& state, QWidget* parent);

    // Refills the list and selects its first entry.
    void Setup();

    void cmdOK_Click();
    void cmdCancel_Click();

  private:
    ApplicationState& state_;
    ListBox* lstList_;
};

} // namespace pollarix
