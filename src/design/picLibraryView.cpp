#include "design/picLibraryView.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <utility>

#include "platform/base/Failure.h"
#include "platform/controls/OnClick.h"

namespace pollarix {

namespace {

constexpr const char* LibraryRoot = "S_Parent";
constexpr const char* CategoryPrefix = "CAT_";
constexpr const char* QuestionPrefix = "Q_";

} // namespace

picLibraryView::picLibraryView(ApplicationState& state, std::function<void(const QString&)> addText,
                               QWidget* parent)
    : ListPanel("picLibraryView", "picBlankPanel2", 25, "Question Library", parent), state_(state),
      addText_(std::move(addText)), tvTreeLibrary_(new TreeView(this)) {
    tvTreeLibrary_->setObjectName("tvTreeLibrary");
    tvTreeLibrary_->setAccessibleName("Question Library");
    tvTreeLibrary_->setFrameShape(QFrame::NoFrame);
    FillWith(tvTreeLibrary_);
    auto* const cmdLibraryAdd = new QPushButton("Add", this);
    cmdLibraryAdd->setObjectName("cmdLibraryAdd");
    cmdLibraryAdd->setAccessibleName("Add the library question to the survey");
    ButtonRow().addStretch(1);
    ButtonRow().addWidget(cmdLibraryAdd);
    OnClick(cmdLibraryAdd, this, &picLibraryView::cmdLibraryAdd_Click);
}

void picLibraryView::LoadLibrary() {
    Connection& library = state_.LibraryConnection;
    tvTreeLibrary_->Add("", TreeView::Root, LibraryRoot, "Library").SetExpanded(true);
    for (Recordset category = library.Execute("SELECT id, name FROM category ORDER BY name");
         !category.AtEnd(); category.MoveNext()) {
        const std::int64_t id = category.Integer(0);
        const QString key = CategoryPrefix + QString::number(id);
        tvTreeLibrary_->Add(LibraryRoot, TreeView::tvwChild, key, category.NullToString(1));
        for (Recordset question = library.Execute(
                 "SELECT id, name FROM question WHERE categoryid = ? ORDER BY name", {id});
             !question.AtEnd(); question.MoveNext())
            tvTreeLibrary_->Add(key, TreeView::tvwChild,
                                QuestionPrefix + QString::number(question.Integer(0)),
                                question.NullToString(1));
    }
}

void picLibraryView::cmdLibraryAdd_Click() {
    const TreeNode* const node = tvTreeLibrary_->SelectedItem();
    if (!node || !node->Key().startsWith(QuestionPrefix)) {
        state_.dialogs.MsgBox("No question has been selected to add. Please select a question to "
                              "add to continue.",
                              MsgIcon::Critical);
        return;
    }
    const std::int64_t id = ToNumber64(node->Key().mid(2));
    const Recordset question =
        state_.LibraryConnection.Execute("SELECT name FROM question WHERE id = ?", {id});
    if (!question.AtEnd())
        addText_(question.NullToString(0));
}

} // namespace pollarix
