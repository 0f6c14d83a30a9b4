#include "platform/controls/RichTextBox.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>
#include <QTextBlock>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>

#include "platform/controls/RichTextDocument.h"

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
    const QString scripts =
        QString::fromUtf8("Ελληνικά عربي עברית 日本語 한국어 ру́сский "
                          "👩‍👩‍👧 "
                          "it's \\back {braces} \"q\" a\tb\u00A0c \u00AD\u2011 €");
    text.paragraphs = {
        {{{scripts, {}},
          {"4.5", {"", 4.5}},
          {" both ", {"", 0, false, true, true}},
          {scripts, {QString::fromUtf8("ＭＳ {Π} \\"), 36, true, false, false, QColor(1, 2, 3)}}}},
        {},
        {{{"first point", {}}}, true},
        {{}, true},
        {{{"o", {"Wingdings"}}, {" 1", {}}}},
        {}};
    const QString rtf = WriteRichText(text);
    for (const QChar unit : rtf)
        ASSERT_LT(unit.unicode(), 0x7F);
    EXPECT_EQ(ReadRichText(rtf), text);
    box->SetTextRTF(rtf);
    EXPECT_EQ(box->TextRTF(), rtf);
    EXPECT_EQ(box->Text(), PlainTextOf(rtf));
    EXPECT_FALSE(box->document()->isUndoAvailable());
    EXPECT_EQ(events, "");
}

// Keys, pastes and undoing at random places of a text with lines far longer than a block, beside a
// plain string that the same happens to.
TEST_F(RichTextBoxTest, LinesBeyondAllLengthStayTheirOwnThroughAllEdits) {
    box->KeyDown = box->KeyUp = {};
    QString model = QString(9000, 'x') + "\nshort\n" + QString("word and ").repeated(900) + "\n";
    box->SetText(model);
    std::vector<QString> steps;
    std::mt19937 random(12);
    const auto below = [&](qsizetype end) {
        return static_cast<qsizetype>(random() % static_cast<unsigned>(end));
    };
    const auto typed = [](QString text) { return text.replace("\n", "\r\n"); };
    const auto modelPlace = [&](int position) {
        return QString(typed(model).left(position)).replace("\r\n", "\n").size();
    };
    // Often right at a place where a line is broken for layout.
    const auto place = [&] {
        if (random() % 2 == 0)
            return below(model.size() + 1);
        const QTextBlock block = box->document()->findBlockByNumber(
            static_cast<int>(below(box->document()->blockCount())));
        return modelPlace(TextPositionOf(*box->document(), block.position()));
    };
    for (int step = 0; step < 400; ++step) {
        const qsizetype from = place();
        const qsizetype to = std::min(random() % 3 == 0 ? place() : from, from + 5000);
        const auto [start, end] = std::minmax(from, to);
        Select(static_cast<int>(typed(model.left(start)).size()),
               static_cast<int>(typed(model.mid(start, end - start)).size()));
        QString next = model;
        const unsigned kind = random() % 6;
        if (kind < 2) {
            QTest::keyClick(box, kind == 0 ? Qt::Key_Q : Qt::Key_Return);
            next.replace(start, end - start, kind == 0 ? "q" : "\n");
        } else if (kind < 4) {
            const bool back = kind == 2;
            QTest::keyClick(box, back ? Qt::Key_Backspace : Qt::Key_Delete);
            if (start != end)
                next.remove(start, end - start);
            else if (back && start > 0)
                next.remove(start - 1, 1);
            else if (!back)
                next.remove(start, 1);
        } else if (kind == 4 || steps.empty()) {
            QMimeData pasted;
            const QString text = QString(random() % 3 == 0 ? 7000 : 3, 'p') + "\nline";
            pasted.setText(text);
            box->insertFromMimeData(&pasted);
            next.replace(start, end - start, text);
        } else {
            box->undo();
            next = steps.back();
            steps.pop_back();
            box->redo();
            ASSERT_EQ(box->Text(), typed(model)) << "redone in step " << step;
            box->undo();
            model = next;
            // What was typed in a row is undone in a row, so the way back ends here.
            steps.clear();
            box->document()->clearUndoRedoStacks();
            ASSERT_EQ(box->Text(), typed(model)) << "undone in step " << step;
            continue;
        }
        if (next == model)
            continue;
        steps.push_back(std::exchange(model, next));
        ASSERT_EQ(box->Text(), typed(model)) << "step " << step << " kind " << kind;
        ASSERT_EQ(box->TextRTF(), WriteRichText(RichTextOf(*box->document())));
        for (auto block = box->document()->begin(); block.isValid(); block = block.next())
            ASSERT_LT(block.length(), 12000);
    }
    box->selectAll();
    const std::unique_ptr<QMimeData> copied(box->createMimeDataFromSelection());
    EXPECT_EQ(copied->text(), model);
}

// No key comes with what the mouse does to the text. Where dragging ends, another window says.
TEST_F(RichTextBoxTest, WhatIsDraggedOutIsAChangeByMouse) {
    struct MovedAway : OpenBox {
        QMimeData* createMimeDataFromSelection() const override {
            QMimeData* const data = OpenBox::createMimeDataFromSelection();
            textCursor().removeSelectedText();
            return data;
        }
    } dragged;
    dragged.resize(200, 100);
    dragged.show();
    dragged.SetText("abc");
    dragged.selectAll();
    int changes = 0;
    dragged.ChangedByMouse = [&] { ++changes; };
    QWidget& paper = *dragged.viewport();
    const QPoint from = dragged.cursorRect().center() - QPoint(5, 0);
    QTest::mousePress(&paper, Qt::LeftButton, {}, from);
    EXPECT_EQ(changes, 0);
    const QPoint to = from + QPoint(0, 4 * QApplication::startDragDistance());
    QMouseEvent move(QEvent::MouseMove, to, paper.mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     {});
    QApplication::sendEvent(&paper, &move);
    EXPECT_EQ(dragged.Text(), "");
    EXPECT_EQ(changes, 1);
    QTest::mouseRelease(&paper, Qt::LeftButton, {}, to);
    EXPECT_EQ(changes, 1);
}

TEST_F(RichTextBoxTest, WhatAnInputMethodEntersIsAKey) {
    QInputMethodEvent composing("k", {});
    QApplication::sendEvent(box, &composing);
    EXPECT_EQ(events, "");
    QInputMethodEvent committed;
    committed.setCommitString(QString::fromUtf8("か"));
    QApplication::sendEvent(box, &committed);
    EXPECT_EQ(events, QString::fromUtf8("D Uか "));
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
    for (const auto& [start, length, seenStart, seenLength] :
         {std::array{0, 12, 0, 12}, std::array{4, 1, 3, 0}, std::array{-3, -3, 0, 0},
          std::array{11, 99, 11, 1}, std::array{5, 4, 5, 4}}) {
        Select(start, length);
        EXPECT_EQ(box->SelStart(), seenStart) << start;
        EXPECT_EQ(box->SelLength(), seenLength) << start;
    }
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

// That the user's ways out of the box are told, the question panel's tests see.
TEST_F(RichTextBoxTest, TheProgramTakesTheFocusAwayQuietly) {
    MoveFocusQuietly(*button);
    EXPECT_TRUE(button->hasFocus());
    // Where the program moves it, a handler may move it on, by whatever reason.
    struct Handler : QObject {
        QWidget* next = nullptr;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::FocusIn)
                next->setFocus(Qt::TabFocusReason);
            return false;
        }
    } handler;
    handler.next = button;
    box->installEventFilter(&handler);
    MoveFocusQuietly(*box);
    box->removeEventFilter(&handler);
    EXPECT_TRUE(button->hasFocus());
    box->setFocus();
    box->setEnabled(false);
    EXPECT_EQ(events, "");
}

// The document converts texts without a box and must get what the box would show.
TEST(RichTextBox, PlainTextOfGivesWhatTheBoxGives) {
    QStringList pieces =
        QString::fromUtf8("{\\rtf1\\ansi |{|}|\\par |\\line |\\pard |\\tab |\\b |\\fs30 |\\u8364?|"
                          "\\u-3?|\\'e9|\\~|\\-|{\\*\\x |{\\pntext\\'b7\\tab}|\\bullet |\\cell |"
                          "\\bin3 |abc| |\r\n|\r|\n|\t|\f|\v|é日本🙂")
            .split('|');
    for (const char16_t unit : {0, 0xa0, 0xad, 0x2028, 0x2029, 0xd83d, 0xfdd0, 0xfeff, 0xfffc})
        pieces << QString(QChar(unit));
    std::mt19937 dice(7);
    RichTextBox box;
    for (int text = 0; text < 3000 && !HasFailure(); ++text) {
        QString rtf = dice() % 4 == 0 ? QString() : pieces[0];
        for (unsigned i = dice() % 25; i > 0; --i)
            rtf += pieces[qsizetype(dice() % unsigned(pieces.size()))];
        box.SetTextRTF(rtf);
        EXPECT_EQ(box.Text(), PlainTextOf(rtf)) << qPrintable(rtf.toHtmlEscaped());
    }
}
