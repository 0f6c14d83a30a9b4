// The dialog that adds a survey server to the list. It loads empty, checks that the fields a server
// can't do without are there, and stores what was typed as it was typed.
#pragma once

#include <QDialog>

class QLineEdit;
class QVBoxLayout;

namespace pollarix {

class Dialogs;
class Settings;

class frmAddServer : public QDialog {
    Q_OBJECT
  public:
    frmAddServer(Settings& settings, Dialogs& dialogs, QWidget* parent);

    void cmdOK_Click();
    void cmdCancel_Click();

  private:
    QLineEdit* AddBox(QVBoxLayout& column, const QString& name, const QString& caption,
                      const QString& accessibleName);
    // False, with a message and the focus in the box, when it is empty.
    bool Require(QLineEdit& box, const QString& what);

    Settings& settings_;
    Dialogs& dialogs_;
    QLineEdit* txtServerName_ = nullptr;
    QLineEdit* txtServerURL_ = nullptr;
    QLineEdit* txtFTPServer_ = nullptr;
    QLineEdit* txtFTPUsername_ = nullptr;
    QLineEdit* txtFTPPassword_ = nullptr;
};

} // namespace pollarix
