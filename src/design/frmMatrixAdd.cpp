#include "design/frmMatrixAdd.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "design/EntryLines.h"
#include "design/ResponseScales.h"
#include "document/SurveyBatch.h"
#include "platform/controls/OnClick.h"

namespace pollarix {

frmMatrixAdd::frmMatrixAdd(ApplicationState& state, QWidget* parent)
    : QDialog(parent), state_(state), txtName_(new QLineEdit(this)), lstList_(new ListBox(this)) {
    setObjectName("frmMatrixAdd");
    setWindowTitle("Add Matrix Responses");
    auto* const Label1 = new QLabel("Response text:", this);
    Label1->setObjectName("Label1");
    txtName_->setObjectName("txtName");
    txtName_->setAccessibleName("Response text");
    auto* const cmdAdd = new QPushButton("&Add", this);
    cmdAdd->setObjectName("cmdAdd");
    cmdAdd->setDefault(true); // text, Enter, text, Enter makes a scale
    auto* const Label2 = new QLabel("Added responses:", this);
    Label2->setObjectName("Label2");
    lstList_->setObjectName("lstList");
    lstList_->setAccessibleName("Added responses");
    auto* const cmdOK = new QPushButton("OK", this);
    cmdOK->setObjectName("cmdOK");
    auto* const cmdCancel = new QPushButton("Cancel", this);
    cmdCancel->setObjectName("cmdCancel");
    OnClick(cmdAdd, this, &frmMatrixAdd::cmdAdd_Click);
    OnClick(cmdOK, this, &frmMatrixAdd::cmdOK_Click);
    OnClick(cmdCancel, this, &frmMatrixAdd::cmdCancel_Click);

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* const grid = new QGridLayout(this);
    grid->setColumnStretch(0, 1);
    grid->addWidget(Label1, 0, 0, 1, 2);
    grid->addWidget(txtName_, 1, 0);
    grid->addWidget(cmdAdd, 1, 1);
    grid->addWidget(Label2, 2, 0, 1, 2);
    grid->addWidget(lstList_, 3, 0, 1, 2);
    grid->addLayout(buttons, 4, 0, 1, 2);
    setTabOrder(txtName_, cmdAdd);
    setTabOrder(cmdAdd, lstList_);
    resize(440, 340);
    txtName_->setFocus();
}

void frmMatrixAdd::cmdAdd_Click() {
    const QStringList texts = EntryLines(txtName_->text());
    if (texts.isEmpty()) {
        state_.dialogs.MsgBox(
            "No response text has been entered. Please enter some text to continue.",
            MsgIcon::Critical);
    } else {
        for (const QString& text : texts)
            lstList_->AddItem(text);
        txtName_->clear();
    }
    txtName_->setFocus();
}

void frmMatrixAdd::cmdOK_Click() {
    if (lstList_->ListCount() == 0) {
        state_.dialogs.MsgBox(
            "No responses have been added. Please add some responses to continue.",
            MsgIcon::Critical);
        return;
    }
    QStringList points;
    for (int i = 0; i < lstList_->ListCount(); ++i)
        points << lstList_->List(i);
    SurveyBatch batch(state_);
    if (!batch)
        return;
    AddResponseScale(state_.SurveyConnection, points);
    batch.Commit();
    close();
}

void frmMatrixAdd::cmdCancel_Click() {
    close();
}

} // namespace pollarix
