// The about box: what the program is, its licence, and the way to its maker's web page.
#pragma once

#include <QDialog>

namespace pollarix {

class Dialogs;

class frmAbout : public QDialog {
    Q_OBJECT
  public:
    frmAbout(Dialogs& dialogs, QWidget* parent);

  private:
    void OpenMakersPage();

    Dialogs& dialogs_;
};

} // namespace pollarix
