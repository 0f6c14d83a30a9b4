#include "design/frmLogic.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

#include "document/QuestionLabels.h"
#include "platform/controls/OnClick.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

namespace {

constexpr int Width = 460;     // pixels
constexpr int LinesOfWhen = 6; // of a long response that show at once

} // namespace

frmLogic::frmLogic(SurveyEditor& editor, std::shared_ptr<clsQ> LogicQuestion,
                   std::int16_t LogicResponseIndex, QWidget* parent)
    : QDialog(parent), editor_(editor), LogicQuestion_(std::move(LogicQuestion)),
      LogicResponseIndex_(LogicResponseIndex),
      lblWhen_(new QLabel("When response <response.name> is selected:")),
      cboList_(new ComboBox(this)) {
    setObjectName("frmLogic");
    setWindowTitle("Logic");
    lblWhen_->setObjectName("lblWhen");
    lblWhen_->setTextFormat(Qt::PlainText);
    lblWhen_->setWordWrap(true);
    lblWhen_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    auto* const Label2 = new QLabel("Jump to question:", this);
    Label2->setObjectName("Label2");
    cboList_->setObjectName("cboList");
    cboList_->setAccessibleName("Jump to question");
    auto* const cmdOK = new QPushButton("OK", this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    auto* const cmdCancel = new QPushButton("&Cancel", this);
    cmdCancel->setObjectName("cmdCancel");
    OnClick(cmdOK, this, &frmLogic::cmdOK_Click);
    OnClick(cmdCancel, this, &frmLogic::cmdCancel_Click);

    Form_Load();

    // A response may be thousands of characters long, and the dialog is to fit the screen.
    auto* const when = new QScrollArea(this);
    when->setFrameShape(QFrame::NoFrame);
    when->setFocusPolicy(Qt::NoFocus);
    when->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    when->setWidgetResizable(true);
    when->setWidget(lblWhen_);
    when->setFixedHeight(std::min(lblWhen_->heightForWidth(Width),
                                  LinesOfWhen * lblWhen_->fontMetrics().lineSpacing()));

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* const rows = new QVBoxLayout(this);
    rows->addWidget(when);
    rows->addSpacing(8);
    rows->addWidget(Label2);
    rows->addWidget(cboList_);
    rows->addStretch(1);
    rows->addSpacing(12);
    rows->addLayout(buttons);
    setMinimumWidth(Width);
    cboList_->setFocus();
}

void frmLogic::Form_Load() {
    const clsSurvey& survey = editor_.Survey();
    const std::shared_ptr<clsResponse> response = LogicQuestion_->GetResponse(LogicResponseIndex_);
    cboList_->AddItem("Next Question (Default)");
    cboList_->SetItemData(cboList_->NewIndex(), -1);
    // Every question is a target, the one that is asked about too, and backwards as well.
    for (int i = 1; i <= survey.QCount(); ++i) {
        const std::shared_ptr<clsQ> q = survey.GetQIndex(Narrow16(i));
        const QString text = PlainTextOf(q->Question);
        cboList_->AddItem(IsNumbered(q->qType) ? NumberAndDot(q->QuestionNo) + text : text);
        cboList_->SetItemData(cboList_->NewIndex(), i);
    }
    if (!response->LogicJumpToQuestionKey.isEmpty()) {
        const std::int16_t position = survey.GetQIndexFromKey(response->LogicJumpToQuestionKey);
        if (position != -1)
            SelectComboItemByData(*cboList_, QString::number(position));
    }
    if (cboList_->ListCount() > 0 && cboList_->ListIndex() == -1)
        cboList_->SetListIndex(0);

    // Once only: a response whose own text holds the token is shown as it is.
    const QString token = "<response.name>";
    QString when = lblWhen_->text();
    lblWhen_->setText(when.replace(when.indexOf(token), token.size(), response->Text));
}

void frmLogic::cmdOK_Click() {
    if (cboList_->ListIndex() != -1) {
        const std::int64_t position = cboList_->ItemData(cboList_->ListIndex());
        editor_.SetJump(*LogicQuestion_, LogicResponseIndex_,
                        position == -1 ? QString()
                                       : editor_.Survey().GetQIndex(Narrow16(position))->Key);
    }
    close();
}

void frmLogic::cmdCancel_Click() {
    close();
}

} // namespace pollarix
