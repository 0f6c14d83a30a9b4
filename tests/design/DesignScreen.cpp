#include "design/DesignScreen.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include "platform/base/Handlers.h"

namespace pollarix::test {

DesignScreen::DesignScreen() : design_(new picDesign(state, &window_)), document_(state, *design_) {
    SetFailureReporter([this](const Failure& failure) {
        failures_ << QString("%1 %2").arg(failure.Number()).arg(failure.Description());
    });
    window_.setCentralWidget(design_);
    window_.resize(1024, 690);
    window_.show();
    QApplication::setActiveWindow(&window_);
    design_->LayOut(24);
    state.LibraryConnection.Open(state.directories.InProgram("Library.mdb"),
                                 Connection::Mode::ReadOnly);
    NewSurvey();
}

DesignScreen::~DesignScreen() {
    EXPECT_EQ(failures_, QStringList());
    EXPECT_EQ(dialogs.TakeTexts(), QStringList());
    SetFailureReporter({});
}

void DesignScreen::NewSurvey() {
    const QString path = BlankSurvey(QString("survey%1.plxs").arg(++surveys_));
    document_.DoClose();
    document_.DoOpen(path, true, -1);
}

void DesignScreen::SurveyOf(std::initializer_list<std::int32_t> kinds) {
    NewSurvey();
    int number = 0;
    for (const std::int32_t qType : kinds) {
        Add(qType);
        WriteText(QString("Q%1").arg(++number));
    }
    document_.DoSave();
}

void DesignScreen::Reopen() {
    const QString path = state.CurrentFilename();
    document_.DoClose();
    document_.DoOpen(path, true, 1);
}

void DesignScreen::Add(std::int32_t qType) {
    constexpr std::array add = {
        &picDesign::mnuDesignAddOpenEndedQuestion_Click,
        &picDesign::mnuDesignAddCheckQuestion_Click, &picDesign::mnuDesignAddRadioQuestion_Click,
        &picDesign::mnuDesignAddMatrixQuestion_Click, &picDesign::mnuDesignAddText_Click};
    (design_->*add[std::size_t(qType)])();
}

void DesignScreen::Press(const char* button) {
    QTest::mouseClick(&Get<QAbstractButton>(button), Qt::LeftButton);
}

void DesignScreen::Key(const char* control, Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&Get<QWidget>(control), key, modifiers);
}

void DesignScreen::ClickNode(int question) {
    auto& tree = Get<TreeView>("tvTreeView");
    QTreeWidgetItem* const root = tree.topLevelItem(0);
    QTreeWidgetItem* const node = question == 0 ? root : root->child(question - 1);
    tree.scrollToItem(node);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(node).center());
}

void DesignScreen::ClickEntry(const char* list, int index) {
    auto& box = Get<ListBox>(list);
    box.scrollToItem(box.item(index));
    QTest::mouseClick(box.viewport(), Qt::LeftButton, {},
                      box.visualItemRect(box.item(index)).center());
}

void DesignScreen::WriteText(const QString& text) {
    auto& box = Get<RichTextBox>("txtQ");
    box.setFocus();
    box.selectAll();
    box.insertPlainText(text);
    Key("txtQ", Qt::Key_Shift); // the release of a key commits
}

void DesignScreen::AddResponses(const char* box, const QStringList& texts) {
    for (const QString& text : texts) {
        auto& line = Get<QLineEdit>(box);
        line.setFocus();
        line.setText(text);
        QTest::keyClick(&line, Qt::Key_Return);
    }
}

QString DesignScreen::Joined(int first, int last, const std::function<QString(int)>& text) {
    QStringList texts;
    for (int i = first; i <= last; ++i)
        texts << text(i);
    return texts.join('|');
}

QString DesignScreen::Nodes() const {
    const QTreeWidgetItem* const root = Get<TreeView>("tvTreeView").topLevelItem(0);
    return Joined(0, root->childCount() - 1, [&](int i) { return root->child(i)->text(0); });
}

QString DesignScreen::Entries(const char* list) const {
    const auto& box = Get<ListBox>(list);
    return Joined(0, box.ListCount() - 1, [&](int i) { return box.List(i); });
}

QString DesignScreen::Responses(int question) const {
    const auto q = state.CurrentSurvey.GetQIndex(std::int16_t(question));
    return Joined(1, q->ResponsesCount(),
                  [&](int i) { return q->GetResponse(std::int16_t(i))->Text; });
}

QString DesignScreen::Rows(const char* sql) {
    QStringList rows;
    for (Recordset row = state.SurveyConnection.Execute(sql); !row.AtEnd(); row.MoveNext())
        rows << row.NullToString(0);
    return rows.join('|');
}

bool DesignScreen::Marks(const std::function<void()>& action) {
    state.MarkFileUnchanged();
    action();
    return state.FileChanged();
}

void DesignScreen::InNextDialog(const char* className, std::function<void(QWidget&)> act) {
    QTimer::singleShot(0, &window_, [className, act = std::move(act)] {
        QWidget* const dialog = QApplication::activeModalWidget();
        ASSERT_TRUE(dialog && dialog->inherits(className)) << className;
        act(*dialog);
        // A dialog that a test leaves open would hang it.
        if (dialog == QApplication::activeModalWidget())
            dialog->close();
    });
}

} // namespace pollarix::test
