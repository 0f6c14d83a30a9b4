#include "design/DesignScreen.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include "platform/Handlers.h"

namespace pollarix::test {

DesignScreen::DesignScreen()
    : settings_(folder_.filePath("settings")),
      state_({POLLARIX_DATA_DIR, folder_.path()}, settings_, dialogs_), document_(state_, *this),
      design_(new picDesign(state_, &window_)) {
    SetFailureReporter([this](const Failure& failure) {
        failures_ << QString("%1 %2").arg(failure.Number()).arg(failure.Description());
    });
    window_.setCentralWidget(design_);
    window_.resize(1024, 690);
    window_.show();
    QApplication::setActiveWindow(&window_);
    design_->LayOut(24);
    state_.LibraryConnection.Open(state_.directories.InProgram("Library.mdb"),
                                  Connection::Mode::ReadOnly);
    NewSurvey();
}

DesignScreen::~DesignScreen() {
    EXPECT_EQ(failures_, QStringList());
    EXPECT_EQ(dialogs_.TakeTexts(), QStringList());
    SetFailureReporter({});
}

void DesignScreen::NewSurvey() {
    const QString path = folder_.filePath(QString("survey%1.plxs").arg(++surveys_));
    ASSERT_TRUE(QFile::copy(state_.directories.InProgram("blank.mdb"), path));
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
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
    const QString path = state_.CurrentFilename;
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

void DesignScreen::Type(const char* control, const QString& text) {
    auto& widget = Get<QWidget>(control);
    QTest::mouseClick(widget.inherits("QTextEdit") ? Get<RichTextBox>(control).viewport() : &widget,
                      Qt::LeftButton);
    QTest::keyClicks(&widget, text);
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

QStringList DesignScreen::Nodes() const {
    QStringList texts;
    const QTreeWidgetItem* const root = Get<TreeView>("tvTreeView").topLevelItem(0);
    for (int i = 0; i < root->childCount(); ++i)
        texts << root->child(i)->text(0);
    return texts;
}

QStringList DesignScreen::Entries(const char* list) const {
    QStringList texts;
    for (int i = 0; i < Get<ListBox>(list).ListCount(); ++i)
        texts << Get<ListBox>(list).List(i);
    return texts;
}

QStringList DesignScreen::Responses(int question) const {
    QStringList texts;
    const auto q = state_.CurrentSurvey.GetQIndex(std::int16_t(question));
    for (std::int16_t i = 1; i <= q->ResponsesCount; ++i)
        texts << q->GetResponse(i)->Text;
    return texts;
}

QStringList DesignScreen::Rows(const char* sql) {
    QStringList rows;
    for (Recordset row = state_.SurveyConnection.Execute(sql); !row.AtEnd(); row.MoveNext())
        rows << row.NullToString(0);
    return rows;
}

bool DesignScreen::Marks(const std::function<void()>& action) {
    state_.FileChanged = false;
    action();
    return state_.FileChanged;
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
