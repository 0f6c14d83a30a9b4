#include "design/picOpenEnded.h"

#include <QHBoxLayout>
#include <QLabel>

#include "design/SelectedQuestion.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

constexpr int MostRows = 6;

} // namespace

picOpenEnded::picOpenEnded(ApplicationState& state, SurveyEditor& editor, TreeView& tvTreeView,
                           QWidget* parent)
    : QWidget(parent), state_(state), editor_(editor), tvTreeView_(tvTreeView),
      cmdOpenEndedNoOfRows_(new ComboBox(this)) {
    setObjectName("picOpenEnded");
    setAutoFillBackground(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* const heading = new QLabel("No of Rows:", this);
    heading->setObjectName("Label1(3)");
    cmdOpenEndedNoOfRows_->setObjectName("cmdOpenEndedNoOfRows");
    cmdOpenEndedNoOfRows_->setAccessibleName("No of rows");
    for (int rows = 1; rows <= MostRows; ++rows)
        cmdOpenEndedNoOfRows_->AddItem(QString::number(rows));
    cmdOpenEndedNoOfRows_->Click = [this] { isChosen_ = true; };
    cmdOpenEndedNoOfRows_->LostFocus = [this] { cmdOpenEndedNoOfRows_LostFocus(); };

    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(heading);
    row->addWidget(cmdOpenEndedNoOfRows_);
    row->addStretch(1);
}

void picOpenEnded::ShowNoOfRows(const clsQ& q) {
    cmdOpenEndedNoOfRows_->SetListIndex(q.OpenEnded_NoOfRows - 1);
    isChosen_ = false;
}

void picOpenEnded::CommitChosen() {
    if (isChosen_)
        cmdOpenEndedNoOfRows_LostFocus();
}

void picOpenEnded::cmdOpenEndedNoOfRows_LostFocus() {
    isChosen_ = false;
    const std::shared_ptr<clsQ> q = SelectedQuestion(state_, tvTreeView_);
    if (q)
        editor_.SetNoOfRows(*q, ToNumber16(cmdOpenEndedNoOfRows_->Text()));
}

} // namespace pollarix
