// Between rich text as a value and the document of a text widget, both ways, without a detour
// through markup. Only the mapping: keys, focus and clipboard are RichTextBox's.
#pragma once

#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>

#include "platform/richtext/RichText.h"

namespace pollarix {

// What the value form knows of a format, and back. The default font and size stay unsaid.
RunFormat RunFormatOf(const QTextCharFormat& format);
QTextCharFormat CharFormatOf(const RunFormat& format);

// The whole document, or what the cursor has selected. A soft line end starts a paragraph.
RichText RichTextOf(const QTextDocument& document);
RichText RichTextOf(const QTextCursor& selection);

// The plain text of the whole document.
QString PlainTextOf(const QTextDocument& document);

// Replaces the document and forgets what could be undone.
void FillDocument(QTextDocument& document, const RichText& text);

// Replaces the cursor's selection. The first paragraph joins the one the cursor is in, which
// becomes a bullet if it was empty and the first paragraph is one; what followed the cursor joins
// the last.
void InsertRichText(QTextCursor& cursor, const RichText& text);

// Whether the cursor's paragraph is a bullet, and making it one or none.
bool IsBullet(const QTextBlock& block);
void SetBullet(QTextCursor cursor, bool on);

// Positions in the plain text, where each line end counts two, against those of the document. What
// lies beyond the text becomes its end; between the two halves of a line end, its begin.
int TextPositionOf(const QTextDocument& document, int documentPosition);
int DocumentPositionOf(const QTextDocument& document, int textPosition);

} // namespace pollarix
