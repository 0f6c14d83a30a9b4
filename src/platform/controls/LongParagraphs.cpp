#include "platform/controls/LongParagraphs.h"

#include <QKeyEvent>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <utility>
#include <vector>

namespace pollarix {

namespace {

constexpr int LongestBlock = 3000; // characters; laid out within a fraction of a millisecond
constexpr int RoomForBlank = 200;  // so far back a blank is looked for, to break behind it

enum Property { JointBefore = QTextFormat::UserProperty + 1, JointBehind };

int NewJoint() {
    static int last = 0;
    return ++last;
}

int Joint(const QTextBlock& block, Property property) {
    return block.isValid() ? block.blockFormat().intProperty(property) : 0;
}

void SetJoint(const QTextBlock& block, Property property, int joint) {
    QTextBlockFormat format = block.blockFormat();
    if (joint != 0)
        format.setProperty(property, joint);
    else
        format.clearProperty(property);
    QTextCursor(block).setBlockFormat(format);
}

bool MayBreakBefore(QChar c) {
    return !c.isLowSurrogate() && !c.isMark() && c != QChar(0x200D);
}

int PlaceToBreak(const QString& text, int start) {
    const int end = start + LongestBlock;
    for (int at = end; at > end - RoomForBlank; --at)
        if (text[at - 1] == u' ')
            return at;
    for (int at = end; at > end - RoomForBlank; --at)
        if (MayBreakBefore(text[at]))
            return at;
    return text[end].isLowSurrogate() ? end - 1 : end;
}

void BreakBlock(const QTextBlock& block) {
    const QString text = block.text();
    std::vector<int> places;
    for (int at = 0; text.size() - at > LongestBlock; places.push_back(at))
        at = PlaceToBreak(text, at);
    // From behind: what is still to be broken stays where it is.
    QTextCursor cursor(block);
    for (auto at = places.rbegin(); at != places.rend(); ++at) {
        const int joint = NewJoint();
        QTextBlockFormat rest;
        rest.setProperty(JointBefore, joint);
        if (const int behind = Joint(block, JointBehind); behind != 0)
            rest.setProperty(JointBehind, behind);
        cursor.setPosition(block.position() + *at);
        cursor.insertBlock(rest, cursor.blockCharFormat());
        SetJoint(block, JointBehind, joint);
    }
}

} // namespace

bool ContinuesParagraph(const QTextBlock& block) {
    const int joint = Joint(block, JointBefore);
    return joint != 0 && Joint(block.previous(), JointBehind) == joint;
}

QTextBlockFormat JointsOnly(const QTextBlockFormat& format) {
    QTextBlockFormat joints;
    for (const Property property : {JointBefore, JointBehind})
        if (format.hasProperty(property))
            joints.setProperty(property, format.property(property));
    return joints;
}

void BreakLongParagraphs(QTextDocument& document, int from, int to) {
    QTextCursor end(&document);
    end.setPosition(to);
    QTextBlock block = document.findBlock(from);
    for (; block.isValid() && block.position() <= end.position(); block = block.next())
        if (block.length() > LongestBlock + 1)
            BreakBlock(block);
}

ParagraphJoints::ParagraphJoints(QTextDocument& document)
    : QObject(&document), document_(document) {
    connect(&document, &QTextDocument::contentsChange, this, [this](int from, int, int added) {
        from_ = from;
        added_ = added;
    });
    // After the change, since it can't be added to while it is told of.
    connect(&document, &QTextDocument::contentsChanged, this, [this] {
        if (from_ >= 0)
            Mend();
    });
}

// Left of the change the block before knows whether there is a joint, right of it the block behind
// does, and within it both have to say so. After an undo nothing is left to mend.
void ParagraphJoints::Mend() {
    const int from = std::exchange(from_, -1);
    const int end = from + added_;
    struct Change {
        QTextBlock block;
        Property property;
        int joint;
    };
    std::vector<Change> changes;
    QTextBlock behind = document_.findBlock(from);
    for (bool isLast = false; behind.isValid() && !isLast; behind = behind.next()) {
        const QTextBlock before = behind.previous();
        const int ofBefore = Joint(before, JointBehind);
        const int ofBehind = Joint(behind, JointBefore);
        isLast = behind.position() > end;
        int joint = ofBefore == ofBehind ? ofBefore : 0;
        if (behind.position() <= from)
            joint = ofBefore;
        else if (isLast)
            joint = ofBehind;
        if (before.isValid() && ofBefore != joint)
            changes.push_back({before, JointBehind, joint});
        if (ofBehind != joint)
            changes.push_back({behind, JointBefore, joint});
    }
    const int ofLast = Joint(document_.lastBlock(), JointBehind);
    if (!behind.isValid() && ofLast != 0)
        changes.push_back({document_.lastBlock(), JointBehind, 0});
    if (changes.empty())
        return;
    QTextCursor edit(&document_);
    edit.joinPreviousEditBlock();
    for (const Change& change : changes)
        SetJoint(change.block, change.property, change.joint);
    edit.endEditBlock();
}

bool DeleteAcrossJoint(QTextCursor cursor, const QKeyEvent& event) {
    const bool backwards = event.key() == Qt::Key_Backspace;
    if ((!backwards && event.key() != Qt::Key_Delete) ||
        (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier || cursor.hasSelection())
        return false;
    const bool atJoint = backwards
                             ? cursor.atBlockStart() && ContinuesParagraph(cursor.block())
                             : cursor.atBlockEnd() && ContinuesParagraph(cursor.block().next());
    if (!atJoint)
        return false;
    cursor.beginEditBlock();
    for (int step = 0; step < 2; ++step) // the joint, then the letter
        backwards ? cursor.deletePreviousChar() : cursor.deleteChar();
    cursor.endEditBlock();
    return true;
}

void InsertPlainText(QTextCursor cursor, const QString& text) {
    const int start = cursor.selectionStart();
    cursor.beginEditBlock();
    cursor.insertText(text);
    BreakLongParagraphs(*cursor.document(), start, cursor.position());
    cursor.endEditBlock();
}

QString TypedText(const QTextCursor& selection, const QString& lineEnd) {
    QString text;
    QTextBlock block = selection.document()->findBlock(selection.selectionStart());
    for (bool isFirst = true; block.isValid() && block.position() <= selection.selectionEnd();
         block = block.next(), isFirst = false) {
        if (!isFirst && !ContinuesParagraph(block))
            text += lineEnd;
        const int start = std::max(selection.selectionStart() - block.position(), 0);
        text += block.text().mid(start, selection.selectionEnd() - block.position() - start);
    }
    return text.replace(QChar::LineSeparator, lineEnd);
}

} // namespace pollarix
