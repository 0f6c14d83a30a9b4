#include "platform/controls/RichTextBox.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>

#include "platform/base/Failure.h"
#include "platform/base/Handlers.h"

using namespace pollarix;

namespace {

// Gives the tests the clipboard's way in and out without a clipboard.
class OpenBox : public RichTextBox {
  public:
    using RichTextBox::createMimeDataFromSelection;
    using RichTextBox::insertFromMimeData;
    using RichTextBox::RichTextBox;
};

} // namespace

class RichTextBoxTest : public testing::Test {
  protected:
    RichTextBoxTest() {
        window.resize(400, 300);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(box);
        layout->addWidget(button);
        box->LostFocus = [this] { events += 'L'; };
        box->KeyDown = [this](QKeyEvent&) { events += 'D' + box->Text() + ' '; };
        box->KeyUp = [this](QKeyEvent&) { events += 'U' + box->Text() + ' '; };
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        box->setFocus();
    }

    void Select(int start, int length) {
        box->SetSelStart(start);
        box->SetSelLength(length);
    }
    RichText Read() const { return ReadRichText(box->TextRTF()); }
    // The text with its formats, as "b<bold>", "*" in front of a bullet and "/" between paragraphs.
    std::string Shape() const {
        QString shape;
        for (const Paragraph& paragraph : Read().paragraphs) {
            shape += paragraph.bullet ? "/*" : "/";
            for (const pollarix::Run& run : paragraph.runs) {
                QString marks = run.format.bold ? "b" : "";
                marks += run.format.italic ? "i" : "";
                marks += run.format.underline ? "u" : "";
                if (run.format.fontSize > 0)
                    marks += QString::number(run.format.fontSize);
                marks += run.format.fontName;
                if (run.format.colour)
                    marks += run.format.colour->name();
                shape += marks.isEmpty() ? run.text : marks + '<' + run.text + '>';
            }
        }
        return shape.mid(1).toStdString();
    }

    QWidget window;
    OpenBox* box = new OpenBox;
    QPushButton* button = new QPushButton("&Other");
    QString events;
};

TEST_F(RichTextBoxTest, KeepsEveryFormatAndScriptAndTheBytes) {
    RichText text;
    const QString scripts = QString::fromUtf8(
        "Ελληνικά عربي 日本語 👩‍👩‍👧 it's \\ {x}\t\u00A0.");
    text.paragraphs = {
        {{{scripts, {}}, {scripts, {"Serif", 14.5, true, true, true, QColor(1, 2, 3)}}}},
        {},
        {{{"one", {}}}, true},
        {{{"two", {"", 0, true}}}, true},
        {{{"after", {}}}},
        {{{QString(10000, 'x'), {}}}, true},
        {}};
    const QString rtf = WriteRichText(text);
    box->SetTextRTF(rtf);
    EXPECT_EQ(box->TextRTF(), rtf);
    EXPECT_EQ(box->Text(), text.PlainText());
    EXPECT_FALSE(box->document()->isUndoAvailable());
    EXPECT_EQ(events, "");

    box->SetTextRTF("not rich\n{text}");
    EXPECT_EQ(Shape(), "not rich/{text}");
}

TEST_F(RichTextBoxTest, KeysAreToldBeforeAndAfterTheBoxActs) {
    QTest::keyClick(box, Qt::Key_A);
    QTest::keyClick(box, Qt::Key_Left);
    EXPECT_EQ(events, "D Ua Da Ua ");
    events.clear();
    QInputMethodEvent composing("k", {});
    QApplication::sendEvent(box, &composing);
    EXPECT_EQ(events, "");
    QInputMethodEvent committed;
    committed.setCommitString(QString::fromUtf8("か"));
    QApplication::sendEvent(box, &committed);
    EXPECT_EQ(events, QString::fromUtf8("Da Uかa "));

    int shown = 0;
    SetFailureReporter([&](const Failure& failure) { shown = failure.Number(); });
    box->KeyDown = [](QKeyEvent&) { throw Failure(failure::Overflow); };
    QTest::keyClick(box, Qt::Key_B);
    SetFailureReporter({});
    EXPECT_EQ(shown, failure::Overflow);
    EXPECT_EQ(box->Text(), QString::fromUtf8("かba"));
}

TEST_F(RichTextBoxTest, FormatsTheSelectionOrWhatIsTypedNext) {
    QTest::keyClicks(box, "a");
    QTest::keyClick(box, Qt::Key_B, Qt::ControlModifier);
    QTest::keyClicks(box, "b");
    for (Qt::Key key : {Qt::Key_I, Qt::Key_B, Qt::Key_U})
        QTest::keyClick(box, key, Qt::ControlModifier);
    QTest::keyClicks(box, "c");
    EXPECT_EQ(Shape(), "ab<b>iu<c>");
    Select(0, 2);
    box->SetSelFontSize(24);
    box->SetSelFontName("Serif");
    box->SetSelColour(Qt::red);
    EXPECT_EQ(Shape(), "24Serif#ff0000<a>b24Serif#ff0000<b>iu<c>");
    box->undo();
    EXPECT_EQ(Shape(), "24Serif<a>b24Serif<b>iu<c>");
}

TEST_F(RichTextBoxTest, BulletsAreMadeContinuedAndLeftByKeys) {
    QTest::keyClick(box, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClicks(box, "a");
    QTest::keyClick(box, Qt::Key_Return);
    QTest::keyClicks(box, "b");
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_EQ(Shape(), "*a/*b/*");
    QTest::keyClick(box, Qt::Key_Return);
    QTest::keyClicks(box, "c");
    EXPECT_EQ(Shape(), "*a/*b/c");
    box->SetSelStart(3);
    QTest::keyClick(box, Qt::Key_Backspace);
    EXPECT_EQ(Shape(), "*a/b/c");
}

TEST_F(RichTextBoxTest, PositionsCountALineEndAsTwo) {
    box->SetText(QString::fromUtf8("a😀\nbc\n\nd"));
    Select(0, static_cast<int>(box->Text().size()));
    EXPECT_EQ(box->SelLength(), box->Text().size());
    EXPECT_EQ(box->textCursor().selectedText().size(), 9);
    for (const auto& [start, length, seenStart, seenLength] :
         {std::array{5, 4, 5, 4}, std::array{4, 1, 3, 0}, std::array{3, 3, 3, 3},
          std::array{-3, -3, 0, 0}, std::array{99, 1, 12, 0}, std::array{11, 99, 11, 1}}) {
        Select(start, length);
        EXPECT_EQ(box->SelStart(), seenStart) << start;
        EXPECT_EQ(box->SelLength(), seenLength) << start;
    }
    Select(5, 4);
    QTest::keyClicks(box, "x");
    EXPECT_EQ(box->Text(), QString::fromUtf8("a😀\r\nx\r\nd"));
}

TEST_F(RichTextBoxTest, CopyAndPasteKeepWhatRichTextHolds) {
    box->SetTextRTF("{\\rtf1 x{\\b bold}\\par\\pard{\\pntext\\'95}point\\par}");
    Select(2, 9);
    const std::unique_ptr<QMimeData> copied(box->createMimeDataFromSelection());
    EXPECT_EQ(copied->text(), "old\npoin");
    EXPECT_TRUE(copied->hasHtml());
    box->SetText("[]");
    box->SetSelStart(1);
    box->insertFromMimeData(copied.get());
    EXPECT_EQ(Shape(), "[b<old>/*poin]");

    QMimeData html;
    html.setHtml(
        "<p>a <b>b</b><img src='x.png'> <span style='font-size:16px;color:#00f'>c</span></p>"
        "<ul><li>d</li></ul><ol><li>e</li></ol>");
    html.setText("unused");
    box->SetText("");
    box->insertFromMimeData(&html);
    EXPECT_EQ(Shape(), "a b<b> 12#0000ff<c>/*d/e");

    QMimeData plain;
    plain.setText(QString::fromUtf8("1\r\n2\u0001\uFFFC"));
    box->SetText("");
    box->SetSelBullet(true);
    box->SetSelBold(true);
    box->insertFromMimeData(&plain);
    EXPECT_EQ(Shape(), "*b<1>/*b<2>");

    QMimeData bytes;
    bytes.setData("text/rtf", QByteArray("{\\rtf1\\ansi \xE4}\0", 15));
    box->SetText("");
    box->insertFromMimeData(&bytes);
    EXPECT_EQ(box->Text(), QString::fromUtf8("ä"));
}

TEST_F(RichTextBoxTest, TheUserTakesTheFocusAwayNotTheProgram) {
    const auto takenBy = [&](const std::function<void()>& move) {
        box->setFocus();
        EXPECT_TRUE(box->hasFocus());
        events.clear();
        move();
        return events;
    };
    QLineEdit* line = new QLineEdit;
    window.layout()->addWidget(line);
    line->show();
    EXPECT_EQ(takenBy([&] { QTest::mouseClick(line, Qt::LeftButton); }), "L");
    EXPECT_EQ(takenBy([&] { QTest::keyPress(box, Qt::Key_Tab); }), "L");
    EXPECT_TRUE(button->hasFocus());
    EXPECT_EQ(takenBy([&] { QTest::keyPress(box, Qt::Key_Backtab); }), "L");

    EXPECT_EQ(takenBy([&] { MoveFocusQuietly(*button); }), "");
    EXPECT_TRUE(button->hasFocus());
    button->hide();
    EXPECT_EQ(takenBy([&] { MoveFocusQuietly(*button); }), "");
    EXPECT_TRUE(box->hasFocus());
    EXPECT_EQ(takenBy([&] { box->setEnabled(false); }), "");
}
