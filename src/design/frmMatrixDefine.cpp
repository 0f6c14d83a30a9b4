#include "design/frmMatrixDefine.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "design/ResponseScales.h"
#include "design/frmMatrixAdd.h"
#include "platform/controls/OnClick.h"
#include "platform/controls/ScreenTitle.h"

namespace pollarix {

frmMatrixDefine::frmMatrixDefine(ApplicationState& state, QWidget* parent)
    : QDialog(parent), state_(state), lstList_(new ListBox(this)) {
    setObjectName("frmMatrixDefine");
    setWindowTitle("Define Matrix Responses");
    QLabel* const lblInstructions = NewInstructions(
        "Instructions - Select the matrix respose you want to edit then press Define.", this);
    lstList_->setObjectName("lstList");
    lstList_->setAccessibleName("Matrix responses");
    auto* const cmdOK = new QPushButton("Define...", this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    auto* const cmdCancel = new QPushButton("&Close", this);
    cmdCancel->setObjectName("cmdCancel");
    OnClick(cmdOK, this, &frmMatrixDefine::cmdOK_Click);
    OnClick(cmdCancel, this, &frmMatrixDefine::cmdCancel_Click);

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* const rows = new QVBoxLayout(this);
    rows->addWidget(lblInstructions);
    rows->addWidget(lstList_, 1);
    rows->addLayout(buttons);
    resize(600, 380);
    lstList_->setFocus();
    Setup();
}

void frmMatrixDefine::Setup() {
    lstList_->Clear(); // first, so that a reading that fails leaves no scales of another survey
    const std::vector<ResponseScale> scales = ReadResponseScales(state_.SurveyConnection);
    for (const ResponseScale& scale : scales) {
        lstList_->AddItem(scale.text);
        lstList_->SetItemData(lstList_->NewIndex(), scale.id);
    }
    if (lstList_->ListCount() > 0)
        lstList_->SetListIndex(0);
}

// Although the instruction speaks of editing, this makes a new scale whatever is selected.
void frmMatrixDefine::cmdOK_Click() {
    frmMatrixAdd(state_, this).exec();
    Setup();
}

void frmMatrixDefine::cmdCancel_Click() {
    close();
}

} // namespace pollarix
