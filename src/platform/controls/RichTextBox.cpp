#include "platform/controls/RichTextBox.h"

#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

#include "platform/base/Handlers.h"
#include "platform/controls/LongParagraphs.h"
#include "platform/controls/RichTextDocument.h"
#include "platform/controls/WrittenBlocks.h"

namespace pollarix {

namespace {

constexpr double IndentWidth = 20; // of a bullet, in pixels at 96 dpi

const QString RtfTypes[] = {"text/rtf", "application/rtf", "text/richtext"};

// HTML of others, from which nothing is fetched.
class PastedDocument : public QTextDocument {
  protected:
    QVariant loadResource(int, const QUrl&) override { return {}; }
};

// Rich text from the clipboard comes as bytes: those beyond ASCII are in the text's code page.
QString TextOfRtfBytes(const QByteArray& bytes) {
    QByteArray ascii;
    ascii.reserve(bytes.size());
    for (char byte : bytes) {
        if (static_cast<unsigned char>(byte) < 0x80)
            ascii += byte;
        else
            ascii += "\\'" + QByteArray::number(static_cast<unsigned char>(byte), 16);
    }
    return QString::fromLatin1(ascii);
}

std::optional<RichText> RichTextIn(const QMimeData& source) {
    for (const QString& type : RtfTypes) {
        if (!source.hasFormat(type))
            continue;
        const QByteArray bytes = source.data(type);
        if (bytes.trimmed().startsWith("{\\rtf"))
            return ReadRichText(TextOfRtfBytes(bytes));
    }
    if (!source.hasHtml())
        return std::nullopt;
    PastedDocument document;
    document.setHtml(source.html());
    return RichTextOf(document);
}

void ClearColour(const QTextCursor& selection) {
    struct Piece {
        int start;
        int end;
        QTextCharFormat format;
    };
    std::vector<Piece> pieces; // first all, since changing them moves the fragments
    const int end = selection.selectionEnd();
    QTextBlock block = selection.document()->findBlock(selection.selectionStart());
    for (; block.isValid() && block.position() < end; block = block.next()) {
        for (auto at = block.begin(); !at.atEnd(); ++at) {
            const QTextFragment fragment = at.fragment();
            Piece piece{std::max(fragment.position(), selection.selectionStart()),
                        std::min(fragment.position() + fragment.length(), end),
                        fragment.charFormat()};
            piece.format.clearForeground();
            if (piece.start < piece.end)
                pieces.push_back(piece);
        }
    }
    QTextCursor cursor(selection);
    cursor.beginEditBlock();
    for (const Piece& piece : pieces) {
        cursor.setPosition(piece.start);
        cursor.setPosition(piece.end, QTextCursor::KeepAnchor);
        cursor.setCharFormat(piece.format);
    }
    cursor.endEditBlock();
}

enum class EditKey { None, Bold, Italic, Underline, Bullet, LeaveBullet };

// Keys that format, and those that end a bullet: Enter on an empty one, Backspace at its start.
EditKey EditKeyOf(const QKeyEvent& event, const QTextCursor& cursor) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::ControlModifier) {
        switch (event.key()) {
        case Qt::Key_B:
            return EditKey::Bold;
        case Qt::Key_I:
            return EditKey::Italic;
        case Qt::Key_U:
            return EditKey::Underline;
        default:
            return EditKey::None;
        }
    }
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier) && event.key() == Qt::Key_L)
        return EditKey::Bullet;
    if (modifiers != Qt::NoModifier || cursor.hasSelection() || !IsBullet(cursor.block()))
        return EditKey::None;
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if ((enter && cursor.block().length() == 1) ||
        (event.key() == Qt::Key_Backspace && cursor.atBlockStart()))
        return EditKey::LeaveBullet;
    return EditKey::None;
}

} // namespace

RichTextBox::RichTextBox(QWidget* parent)
    : QTextEdit(parent), written_(new WrittenBlocks(*document())) {
    new ParagraphJoints(*document()); // the document's
    setFont(QFont(RichText::DefaultFontName, static_cast<int>(RichText::DefaultFontSize)));
    document()->setDefaultFont(font());
    document()->setIndentWidth(IndentWidth * logicalDpiX() / 96.0);
    setTabChangesFocus(true);
}

QString RichTextBox::TextRTF() const {
    return written_->Rtf();
}

void RichTextBox::SetTextRTF(const QString& rtf) {
    Fill(ReadRichText(rtf));
}

QString RichTextBox::Text() const {
    return PlainTextOf(*document());
}

void RichTextBox::SetText(const QString& plain) {
    Fill(RichText::FromPlainText(plain));
}

void RichTextBox::Fill(const RichText& text) {
    FillDocument(*document(), text);
    setTextCursor(QTextCursor(document())); // to the start
}

int RichTextBox::SelStart() const {
    return TextPositionOf(*document(), textCursor().selectionStart());
}

void RichTextBox::SetSelStart(int position) {
    QTextCursor cursor = textCursor();
    cursor.setPosition(DocumentPositionOf(*document(), position));
    setTextCursor(cursor);
}

int RichTextBox::SelLength() const {
    return TextPositionOf(*document(), textCursor().selectionEnd()) - SelStart();
}

void RichTextBox::SetSelLength(int length) {
    QTextCursor cursor = textCursor();
    const int start = cursor.selectionStart();
    const int last = TextPositionOf(*document(), document()->characterCount() - 1);
    const int textStart = SelStart();
    const int wanted = std::clamp(length, 0, last - textStart);
    cursor.setPosition(start);
    const QTextCursor atStart = cursor;
    cursor.setPosition(DocumentPositionOf(*document(), textStart + wanted),
                       QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    // The caret is at the end, but a long selection is read from its beginning.
    if (const int above = cursorRect(atStart).top(); above < 0)
        verticalScrollBar()->setValue(verticalScrollBar()->value() + above);
}

void RichTextBox::SetSelBold(bool on) {
    QTextCharFormat format;
    format.setFontWeight(on ? QFont::Bold : QFont::Normal);
    mergeCurrentCharFormat(format);
}

void RichTextBox::SetSelItalic(bool on) {
    QTextCharFormat format;
    format.setFontItalic(on);
    mergeCurrentCharFormat(format);
}

void RichTextBox::SetSelUnderline(bool on) {
    QTextCharFormat format;
    format.setFontUnderline(on);
    mergeCurrentCharFormat(format);
}

void RichTextBox::SetSelFontSize(double points) {
    QTextCharFormat format;
    format.setFontPointSize(points > 0 ? points : RichText::DefaultFontSize);
    mergeCurrentCharFormat(format);
}

void RichTextBox::SetSelFontName(const QString& name) {
    QTextCharFormat format;
    format.setFontFamilies({name.isEmpty() ? QString(RichText::DefaultFontName) : name});
    mergeCurrentCharFormat(format);
}

void RichTextBox::SetSelColour(const QColor& colour) {
    QTextCharFormat format;
    if (colour.isValid()) {
        format.setForeground(colour);
        mergeCurrentCharFormat(format);
        return;
    }
    // The window's own colour is the lack of one, which can't be merged in.
    ClearColour(textCursor());
    format = currentCharFormat();
    format.clearForeground();
    if (!textCursor().hasSelection())
        setCurrentCharFormat(format);
}

void RichTextBox::SetSelBullet(bool on) {
    const QTextCursor selection = textCursor();
    QTextCursor cursor(document());
    cursor.setPosition(selection.selectionStart());
    cursor.beginEditBlock();
    do
        SetBullet(cursor, on);
    while (cursor.movePosition(QTextCursor::NextBlock) &&
           cursor.position() < selection.selectionEnd());
    cursor.endEditBlock();
}

bool RichTextBox::event(QEvent* event) {
    // A menu with the same key does not get it while the box has the focus.
    if (event->type() == QEvent::ShortcutOverride && !isReadOnly()) {
        const EditKey key = EditKeyOf(*static_cast<QKeyEvent*>(event), textCursor());
        if (key != EditKey::None) {
            event->accept();
            return true;
        }
    }
    return QTextEdit::event(event);
}

void RichTextBox::keyPressEvent(QKeyEvent* event) {
    RunHandler([&] {
        if (KeyDown)
            KeyDown(*event);
    });
    const QTextCharFormat format = currentCharFormat();
    switch (isReadOnly() ? EditKey::None : EditKeyOf(*event, textCursor())) {
    case EditKey::Bold:
        SetSelBold(format.fontWeight() < QFont::DemiBold);
        break;
    case EditKey::Italic:
        SetSelItalic(!format.fontItalic());
        break;
    case EditKey::Underline:
        SetSelUnderline(!format.fontUnderline());
        break;
    case EditKey::Bullet:
        SetSelBullet(!IsBullet(document()->findBlock(textCursor().selectionStart())));
        break;
    case EditKey::LeaveBullet:
        SetBullet(textCursor(), false);
        break;
    case EditKey::None:
        if (isReadOnly() || !DeleteAcrossJoint(textCursor(), *event)) {
            QTextEdit::keyPressEvent(event);
            return;
        }
        break;
    }
    event->accept();
}

void RichTextBox::keyReleaseEvent(QKeyEvent* event) {
    QTextEdit::keyReleaseEvent(event);
    RunHandler([&] {
        if (KeyUp)
            KeyUp(*event);
    });
}

void RichTextBox::inputMethodEvent(QInputMethodEvent* event) {
    const bool changesText = !event->commitString().isEmpty() || event->replacementLength() > 0;
    if (!changesText) {
        QTextEdit::inputMethodEvent(event);
        return;
    }
    // What an input method enters comes without a key: it counts as one, else it would be missed.
    QKeyEvent down(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, event->commitString());
    QKeyEvent up(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, event->commitString());
    RunHandler([&] {
        if (KeyDown)
            KeyDown(down);
    });
    QTextEdit::inputMethodEvent(event);
    RunHandler([&] {
        if (KeyUp)
            KeyUp(up);
    });
}

void RichTextBox::ByMouse(const std::function<void()>& act) {
    const int before = document()->revision();
    act();
    if (document()->revision() != before)
        RunHandler(ChangedByMouse);
}

// Dragging lasts as long as this: what was moved elsewhere is out of the text then.
void RichTextBox::mouseMoveEvent(QMouseEvent* event) {
    ByMouse([&] { QTextEdit::mouseMoveEvent(event); });
}

void RichTextBox::mouseReleaseEvent(QMouseEvent* event) {
    ByMouse([&] { QTextEdit::mouseReleaseEvent(event); });
}

void RichTextBox::dropEvent(QDropEvent* event) {
    ByMouse([&] { QTextEdit::dropEvent(event); });
}

void RichTextBox::focusOutEvent(QFocusEvent* event) {
    const bool leaves = IsFocusLossByUser(*this, *event);
    QTextEdit::focusOutEvent(event);
    if (leaves)
        RunHandler(LostFocus);
}

QMimeData* RichTextBox::createMimeDataFromSelection() const {
    const RichText text = RichTextOf(textCursor());
    const QByteArray rtf = WriteRichText(text).toLatin1();
    auto* data = new QMimeData; // the caller's
    data->setData(RtfTypes[0], rtf);
    data->setData(RtfTypes[1], rtf);
    QTextDocument unbroken; // others know nothing of joints
    QTextCursor start(&unbroken);
    InsertRichText(start, text);
    data->setHtml(unbroken.toHtml());
    data->setText(text.PlainText().replace("\r\n", "\n"));
    return data;
}

bool RichTextBox::canInsertFromMimeData(const QMimeData* source) const {
    return source->hasText() || source->hasHtml() ||
           std::any_of(std::begin(RtfTypes), std::end(RtfTypes),
                       [&](const QString& type) { return source->hasFormat(type); });
}

void RichTextBox::insertFromMimeData(const QMimeData* source) {
    if (isReadOnly())
        return;
    QTextCursor cursor = textCursor();
    const int start = cursor.selectionStart();
    cursor.beginEditBlock();
    if (const auto rich = RichTextIn(*source)) {
        InsertRichText(cursor, *rich);
    } else if (source->hasText()) {
        // Text without a format takes that of the caret, and its lines go on as bullets there.
        const QString plain = RichText::FromPlainText(source->text()).PlainText();
        cursor.insertText(QString(plain).replace("\r\n", "\n"), currentCharFormat());
    }
    BreakLongParagraphs(*document(), start, cursor.position());
    cursor.endEditBlock();
    setTextCursor(cursor);
    ensureCursorVisible();
}

} // namespace pollarix
