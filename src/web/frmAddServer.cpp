#include "web/frmAddServer.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/base/Handlers.h"
#include "platform/desktop/Dialogs.h"
#include "web/ServerList.h"

namespace pollarix {

frmAddServer::frmAddServer(Settings& settings, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), settings_(settings), dialogs_(dialogs) {
    setObjectName("frmAddServer");
    setWindowTitle("Add Survey Server");
    setModal(true);
    auto* const column = new QVBoxLayout(this);
    txtServerName_ =
        AddBox(*column, "ServerName", "Server Name (i.e. Friendly Server Name):", "Server Name");
    txtServerURL_ = AddBox(*column, "ServerURL",
                           "Server URL (i.e. http://www.myserver.example/):", "Server URL");
    txtFTPServer_ =
        AddBox(*column, "FTPServer", "FTP Server (i.e. ftp.myserver.example):", "FTP Server");
    txtFTPUsername_ =
        AddBox(*column, "FTPUsername", "FTP Username (i.e. anonymous):", "FTP Username");
    txtFTPPassword_ =
        AddBox(*column, "FTPPassword", "FTP Password (i.e. me@myserver.example):", "FTP Password");
    txtFTPPassword_->setEchoMode(QLineEdit::Password);

    auto* const cmdOK = new QPushButton("OK", this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    auto* const cmdCancel = new QPushButton("Cancel", this);
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdOK, &QPushButton::clicked, this, [this] { RunHandler([this] { cmdOK_Click(); }); });
    connect(cmdCancel, &QPushButton::clicked, this,
            [this] { RunHandler([this] { cmdCancel_Click(); }); });
    auto* const buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    column->addSpacing(12);
    column->addStretch(1);
    column->addLayout(buttons);
    resize(420, sizeHint().height());
}

void frmAddServer::cmdOK_Click() {
    if (!Require(*txtServerName_, "Server Name") || !Require(*txtServerURL_, "Server URL") ||
        !Require(*txtFTPServer_, "FTP Server"))
        return;
    AddServer({txtServerName_->text(), txtServerURL_->text(), txtFTPServer_->text(),
               txtFTPUsername_->text(), txtFTPPassword_->text()},
              settings_);
    close();
}

void frmAddServer::cmdCancel_Click() {
    close();
}

QLineEdit* frmAddServer::AddBox(QVBoxLayout& column, const QString& name, const QString& caption,
                                const QString& accessibleName) {
    auto* const label = new QLabel(caption, this);
    label->setObjectName("lbl" + name);
    auto* const box = new QLineEdit(this);
    box->setObjectName("txt" + name);
    box->setAccessibleName(accessibleName);
    label->setBuddy(box);
    if (column.count() > 0)
        column.addSpacing(6); // a caption belongs to the box below it
    column.addWidget(label);
    column.addWidget(box);
    return box;
}

bool frmAddServer::Require(QLineEdit& box, const QString& what) {
    if (!box.text().isEmpty())
        return true;
    dialogs_.MsgBox(QString("No %1 has been entered. Please enter a %1 to continue.").arg(what),
                    MsgIcon::Critical);
    box.setFocus();
    return false;
}

} // namespace pollarix
