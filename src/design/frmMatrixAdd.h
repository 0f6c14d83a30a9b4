// The dialog that makes a new answer scale: its points are entered one by one and written to the
// survey file at OK. Entered points can't be moved or taken back; Cancel drops them all.
#pragma once

#include <QDialog>

#include "document/ApplicationState.h"
#include "platform/controls/ListBox.h"

class QLineEdit;

namespace pollarix {

class frmMatrixAdd : public QDialog {
    Q_OBJECT
  public:
    frmMatrixAdd(ApplicationState& state, QWidget* parent);

    void cmdAdd_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

  private:
    ApplicationState& state_;
    QLineEdit* txtName_;
    ListBox* lstList_;
};

} // namespace pollarix
