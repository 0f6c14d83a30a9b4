#include "platform/controls/PlainTextBox.h"

#include <QKeyEvent>
#include <QMimeData>

#include "platform/controls/LongParagraphs.h"

namespace pollarix {

PlainTextBox::PlainTextBox(QWidget* parent) : QPlainTextEdit(parent) {
    new ParagraphJoints(*document()); // the document's
}

void PlainTextBox::SetText(const QString& text) {
    QTextDocument& whole = *document();
    whole.setUndoRedoEnabled(false);
    whole.clear();
    InsertPlainText(QTextCursor(&whole), text);
    whole.setUndoRedoEnabled(true);
    setTextCursor(QTextCursor(&whole)); // to the start
    given_ = text;
    shown_ = Typed();
}

QString PlainTextBox::Text() const {
    const QString typed = Typed();
    return typed == shown_ ? given_ : typed;
}

QString PlainTextBox::Typed() const {
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    return TypedText(all, "\r\n");
}

void PlainTextBox::keyPressEvent(QKeyEvent* event) {
    if (!isReadOnly() && DeleteAcrossJoint(textCursor(), *event))
        event->accept();
    else
        QPlainTextEdit::keyPressEvent(event);
}

QMimeData* PlainTextBox::createMimeDataFromSelection() const {
    auto* const data = new QMimeData; // the caller's
    data->setText(TypedText(textCursor(), "\n"));
    return data;
}

void PlainTextBox::insertFromMimeData(const QMimeData* source) {
    if (isReadOnly() || !source->hasText())
        return;
    InsertPlainText(textCursor(), source->text());
    ensureCursorVisible();
}

} // namespace pollarix
