#include "design/ResponsePanel.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "design/ArrowButton.h"
#include "design/EntryLines.h"
#include "design/SelectedQuestion.h"
#include "platform/controls/Focus.h"
#include "platform/controls/OnClick.h"

namespace pollarix {

namespace {

constexpr int Gap = 6;
constexpr int RowsOfList = 4; // that show in the smallest window

QLabel* NewLabel(const char* name, const char* caption, QWidget* parent) {
    auto* label = new QLabel(caption, parent);
    label->setObjectName(name);
    return label;
}

QPushButton* NewButton(const char* name, const char* caption, const QString& says,
                       QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setAccessibleName(says);
    return button;
}

std::vector<std::shared_ptr<clsResponse>> ResponsesOf(const clsQ& q) {
    std::vector<std::shared_ptr<clsResponse>> responses;
    for (int i = 1; i <= q.ResponsesCount(); ++i)
        responses.push_back(q.GetResponse(Narrow16(i)));
    return responses;
}

} // namespace

ResponsePanel::ResponsePanel(const Words& words, ApplicationState& state, SurveyEditor& editor,
                             TreeView& tvTreeView, QWidget* parent)
    : QWidget(parent), state_(state), editor_(editor), tvTreeView_(tvTreeView),
      list_(new ListBox(this)), box_(new QLineEdit(this)),
      add_(NewButton(words.add, "Add", QString("Add %1").arg(words.what), this)),
      up_(NewArrowButton(words.up, "up", QString("Move %1 up").arg(words.what), this)),
      down_(NewArrowButton(words.down, "down", QString("Move %1 down").arg(words.what), this)),
      delete_(NewButton(words.remove, "Delete", QString("Delete %1").arg(words.what), this)),
      column_(new QVBoxLayout), grid_(new QGridLayout(this)) {
    setObjectName(words.panel);
    // One panel may lie behind another that covers it.
    setAutoFillBackground(true);
    box_->setObjectName(words.box);
    box_->setAccessibleName(words.boxCaption);
    list_->setObjectName(words.list);
    list_->setAccessibleName(words.listCaption);
    list_->setMinimumHeight(RowsOfList * list_->fontMetrics().height() + 2 * list_->frameWidth());
    up_->setEnabled(false);
    down_->setEnabled(false);

    auto* const arrows = new QHBoxLayout;
    arrows->setSpacing(Gap);
    arrows->addWidget(up_);
    arrows->addWidget(down_);
    arrows->addStretch(1);
    column_->setSpacing(Gap);
    column_->addLayout(arrows);
    column_->addWidget(delete_);
    column_->addStretch(1);

    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setSpacing(Gap);
    grid_->setColumnStretch(0, 1);
    grid_->addWidget(NewLabel(words.boxHeading, words.boxCaption, this), 0, 0, 1, 2);
    grid_->addWidget(box_, 1, 0);
    grid_->addWidget(add_, 1, 1);
    grid_->addWidget(NewLabel(words.listHeading, words.listCaption, this), 2, 0, 1, 2);
    grid_->addWidget(list_, 3, 0);
    grid_->addLayout(column_, 3, 1);
    grid_->setRowStretch(3, 1);

    setTabOrder(box_, add_);
    setTabOrder(add_, list_);
    setTabOrder(list_, up_);

    box_->installEventFilter(this);
    list_->Click = [this] { List_Click(); };
    connect(box_, &QLineEdit::returnPressed, this, [this] { RunHandler([this] { Add_Click(); }); });
    OnClick(add_, this, &ResponsePanel::Add_Click);
    OnClick(delete_, this, &ResponsePanel::Delete_Click);
    OnClick(up_, this, &ResponsePanel::Up_Click);
    OnClick(down_, this, &ResponsePanel::Down_Click);
}

// Enter in the box means Add, and only there; the button shows it by its default look.
bool ResponsePanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn)
        add_->setDefault(true);
    else if (event->type() == QEvent::FocusOut)
        add_->setDefault(false);
    return QWidget::eventFilter(watched, event);
}

std::shared_ptr<clsQ> ResponsePanel::CurrentQuestion() const {
    return SelectedQuestion(state_, tvTreeView_);
}

std::shared_ptr<clsQ> ResponsePanel::QuestionOfList() {
    std::shared_ptr<clsQ> q = CurrentQuestion();
    if (!q || ShowsResponsesOf(*q))
        return q;
    Refill(*q);
    return nullptr;
}

bool ResponsePanel::ShowsResponsesOf(const clsQ& q) const {
    return shown_ == ResponsesOf(q);
}

void ResponsePanel::AddRow(QWidget* label, QWidget* field, QWidget* button) {
    const int row = grid_->rowCount();
    grid_->addWidget(label, row, 0, 1, 2);
    grid_->addWidget(field, row + 1, 0);
    grid_->addWidget(button, row + 1, 1);
}

void ResponsePanel::Fill(const clsQ& q) {
    list_->Clear();
    shown_ = ResponsesOf(q);
    for (const std::shared_ptr<clsResponse>& r : shown_) {
        list_->AddItem(r->Text);
        list_->SetItemData(list_->NewIndex(), r->DatabaseID);
    }
    ListChanged(q);
}

void ResponsePanel::ClearList() {
    list_->Clear();
    shown_.clear();
}

void ResponsePanel::ShowResponse(int response) {
    if (response < 1 || response > list_->ListCount())
        return;
    list_->SetListIndex(response - 1);
    MoveFocusQuietly(*list_);
}

void ResponsePanel::FocusBox() {
    MoveFocusQuietly(*box_);
}

void ResponsePanel::EditResponse(int row, const QString& text) {
    const std::shared_ptr<clsQ> q = QuestionOfList();
    if (!q)
        return;
    // A list of sub questions may have an order of its own: then they go by their texts.
    int position = row + 1;
    const auto shows = [&](int at) {
        return q->GetResponse(Narrow16(at))->Text == list_->List(row);
    };
    for (int at = q->ResponsesCount(); at >= 1 && !shows(position); --at)
        if (shows(at))
            position = at;
    if (!shows(position))
        return;
    editor_.SetResponseText(*q, Narrow16(position), text);
    list_->SetList(row, text);
    ListChanged(*q);
}

void ResponsePanel::Add_Click() {
    const std::shared_ptr<clsQ> q = QuestionOfList();
    if (!q)
        return;
    QStringList texts = EntryLines(box_->text());
    const int before = q->ResponsesCount();
    const auto show = [&] {
        for (int added = q->ResponsesCount() - before; added > 0; --added)
            list_->AddItem(texts.takeFirst());
        shown_ = ResponsesOf(*q);
        ListChanged(*q);
        box_->clear();
        FocusBox();
    };
    try {
        // For an empty box too: it adds nothing, but it does mark the survey.
        editor_.AddResponses(*q, texts);
    } catch (...) {
        show();
        box_->setText(texts.join('\n')); // what there was no room for
        throw;
    }
    show();
}

void ResponsePanel::Delete_Click() {
    const std::shared_ptr<clsQ> q = QuestionOfList();
    const int index = list_->ListIndex();
    if (!q || index == -1)
        return;
    editor_.DeleteResponse(*q, Narrow16(index + 1));
    // Nothing is selected afterwards, and the arrows stay as they were until the next click.
    list_->RemoveItem(index);
    shown_ = ResponsesOf(*q);
}

void ResponsePanel::Move(int step) {
    const std::shared_ptr<clsQ> q = QuestionOfList();
    const int index = list_->ListIndex();
    const int neighbour = index + step;
    if (!q || index == -1 || neighbour < 0 || neighbour >= list_->ListCount())
        return;
    MoveInQuestion(*q, Narrow16(index + 1), Narrow16(neighbour + 1));
    shown_ = ResponsesOf(*q);
    // The texts alone; the ItemData stays with the place.
    const QString kept = list_->List(index);
    list_->SetList(index, list_->List(neighbour));
    list_->SetList(neighbour, kept);
    ListChanged(*q);
    list_->SetListIndex(neighbour);
}

void ResponsePanel::List_Click() {
    const int index = list_->ListIndex();
    SetArrow(*up_, index >= 1);
    SetArrow(*down_, index < list_->ListCount() - 1);
}

// An arrow that goes off under the focus would hand it on to Delete, which the next press of the
// Space key would then be.
void ResponsePanel::SetArrow(QToolButton& arrow, bool on) {
    if (!on && arrow.hasFocus())
        MoveFocusQuietly(*list_);
    arrow.setEnabled(on);
}

} // namespace pollarix
