// Long paragraphs in the document of a text widget. Each key lays out its whole block anew, so a
// long paragraph is kept as several blocks and looks as if it had line ends there. It stays one
// paragraph: blocks that belong together carry a joint, and whoever reads the document asks for it.
// A joint is an equal number in the formats of both blocks, so that a format copied by an edit
// joins nothing that was not joined.
#pragma once

#include <QObject>
#include <QTextBlock>
#include <QTextCursor>

class QKeyEvent;
class QTextDocument;

namespace pollarix {

// Whether the block goes on with the paragraph of the block before it.
bool ContinuesParagraph(const QTextBlock& block);

// The format without anything but its joints.
QTextBlockFormat JointsOnly(const QTextBlockFormat& format);

// Breaks the long blocks between two positions. Undone together with the edit block it is called
// in.
void BreakLongParagraphs(QTextDocument& document, int from, int to);

// Keeps the joints of a document right through all edits: those that the user did not touch hold,
// and a line end of the user's own is never one.
class ParagraphJoints : public QObject {
  public:
    explicit ParagraphJoints(QTextDocument& document);

  private:
    void Mend();

    QTextDocument& document_;
    int from_ = -1; // of the last change; -1 for none
    int added_ = 0;
};

// For Backspace and Delete: deletes the letter beside the caret where a joint lies between them.
// False for another key and where there is no joint.
bool DeleteAcrossJoint(QTextCursor cursor, const QKeyEvent& event);

// Replaces the cursor's selection by text without a format of its own, as one step for undo.
void InsertPlainText(QTextCursor cursor, const QString& text);

// What the cursor has selected, without the joints, every unit as it was typed.
QString TypedText(const QTextCursor& selection, const QString& lineEnd);

} // namespace pollarix
