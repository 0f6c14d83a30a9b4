#include "platform/controls/RichTextDocument.h"

#include <QTextBlock>
#include <QTextList>

#include <algorithm>
#include <utility>

#include "platform/base/TextUnits.h"
#include "platform/controls/LongParagraphs.h"

namespace pollarix {

namespace {

double PointSizeOf(const QTextCharFormat& format) {
    if (format.hasProperty(QTextFormat::FontPointSize))
        return format.fontPointSize();
    if (format.hasProperty(QTextFormat::FontPixelSize))
        return format.intProperty(QTextFormat::FontPixelSize) * 72.0 / 96.0;
    if (format.hasProperty(QTextFormat::FontSizeAdjustment)) {
        constexpr double steps[] = {0.7, 0.8, 1, 1.2, 1.5, 2, 2.4};
        const int step = format.intProperty(QTextFormat::FontSizeAdjustment);
        return RichText::DefaultFontSize * steps[std::clamp(step + 2, 0, 6)];
    }
    return 0;
}

// Appends the part of a block from one document position up to another.
void AppendBlock(RichText& text, const QTextBlock& block, int from, int to) {
    if (text.paragraphs.empty() || !ContinuesParagraph(block))
        text.paragraphs.push_back({{}, IsBullet(block)});
    LineSplitter splitter;
    RunFormat format;
    const auto addText = [&](QStringView piece) {
        std::vector<Run>& runs = text.paragraphs.back().runs;
        if (runs.empty() || runs.back().format != format)
            runs.push_back({{}, format});
        runs.back().text.append(piece);
    };
    for (auto at = block.begin(); !at.atEnd(); ++at) {
        const QTextFragment fragment = at.fragment();
        const int start = std::max(from, fragment.position());
        const int end = std::min(to, fragment.position() + fragment.length());
        if (start >= end)
            continue;
        format = RunFormatOf(fragment.charFormat());
        splitter.Feed(QStringView(fragment.text()).mid(start - fragment.position(), end - start),
                      addText, [&] { text.paragraphs.emplace_back(); });
    }
    splitter.Finish(addText);
}

void InsertRuns(QTextCursor& cursor, const Paragraph& paragraph) {
    for (const Run& run : paragraph.runs)
        cursor.insertText(run.text, CharFormatOf(run.format));
}

QTextListFormat BulletFormat() {
    QTextListFormat format;
    format.setStyle(QTextListFormat::ListDisc);
    return format;
}

// Neighbouring bullets are one list.
void JoinList(QTextCursor& cursor) {
    const QTextBlock before = cursor.block().previous();
    if (IsBullet(before))
        before.textList()->add(cursor.block());
    else
        cursor.createList(BulletFormat());
}

void InsertParagraphs(QTextCursor& cursor, const RichText& text) {
    bool first = true;
    for (const Paragraph& paragraph : text.paragraphs) {
        if (!std::exchange(first, false)) {
            cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
            if (paragraph.bullet)
                JoinList(cursor);
        } else if (paragraph.bullet && cursor.block().length() == 1 && !IsBullet(cursor.block())) {
            JoinList(cursor);
        }
        InsertRuns(cursor, paragraph);
    }
}

// How many positions of the plain text a unit of the document takes.
int WidthOf(QChar unit) {
    switch (KindOf(unit.unicode())) {
    case UnitKind::Break:
        return 2;
    case UnitKind::Drop:
        return 0;
    default:
        return 1;
    }
}

} // namespace

RunFormat RunFormatOf(const QTextCharFormat& format) {
    RunFormat run;
    if (format.hasProperty(QTextFormat::FontFamilies))
        run.fontName = format.fontFamilies().toStringList().value(0);
    run.fontSize = PointSizeOf(format);
    run.bold = format.fontWeight() >= QFont::DemiBold;
    run.italic = format.fontItalic();
    run.underline = format.fontUnderline();
    if (format.foreground().style() == Qt::SolidPattern)
        run.colour = format.foreground().color();
    return Normalised(run);
}

QTextCharFormat CharFormatOf(const RunFormat& run) {
    QTextCharFormat format;
    if (!run.fontName.isEmpty())
        format.setFontFamilies({run.fontName});
    if (run.fontSize > 0)
        format.setFontPointSize(run.fontSize);
    if (run.bold)
        format.setFontWeight(QFont::Bold);
    if (run.italic)
        format.setFontItalic(true);
    if (run.underline)
        format.setFontUnderline(true);
    if (run.colour)
        format.setForeground(*run.colour);
    return format;
}

RichText RichTextOf(const QTextDocument& document) {
    RichText text;
    text.paragraphs.clear();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        AppendBlock(text, block, block.position(), block.position() + block.length());
    return text;
}

RichText RichTextOf(const QTextCursor& selection) {
    RichText text;
    text.paragraphs.clear();
    const int start = selection.selectionStart();
    const int end = selection.selectionEnd();
    QTextBlock block = selection.document()->findBlock(start);
    for (; block.isValid() && block.position() <= end; block = block.next())
        AppendBlock(text, block, start, end);
    return text;
}

void FillDocument(QTextDocument& document, const RichText& text) {
    document.setUndoRedoEnabled(false);
    document.clear();
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    InsertParagraphs(cursor, text);
    BreakLongParagraphs(document, 0, cursor.position());
    cursor.endEditBlock();
    document.setUndoRedoEnabled(true);
}

void InsertRichText(QTextCursor& cursor, const RichText& text) {
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    InsertParagraphs(cursor, text);
    cursor.endEditBlock();
}

bool IsBullet(const QTextBlock& block) {
    const QTextList* list = block.isValid() ? block.textList() : nullptr;
    if (!list)
        return false;
    const QTextListFormat::Style style = list->format().style();
    return style == QTextListFormat::ListDisc || style == QTextListFormat::ListCircle ||
           style == QTextListFormat::ListSquare;
}

QString PlainTextOf(const QTextDocument& document) {
    QString text;
    const auto addText = [&](QStringView piece) { text.append(piece); };
    const auto addBreak = [&] { text += QLatin1String("\r\n"); };
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockNumber() > 0 && !ContinuesParagraph(block))
            addBreak();
        LineSplitter splitter;
        splitter.Feed(block.text(), addText, addBreak);
        splitter.Finish(addText);
    }
    return text;
}

void SetBullet(QTextCursor cursor, bool on) {
    while (ContinuesParagraph(cursor.block()))
        cursor.movePosition(QTextCursor::PreviousBlock);
    if (on == IsBullet(cursor.block()))
        return;
    // Leaving a list through the block's format leaves no indent behind.
    if (on)
        JoinList(cursor);
    else
        cursor.setBlockFormat(JointsOnly(cursor.blockFormat()));
}

int TextPositionOf(const QTextDocument& document, int documentPosition) {
    int position = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QString text = block.text();
        const int inside = documentPosition - block.position();
        for (int index = 0; index < std::min<int>(inside, static_cast<int>(text.size())); ++index)
            position += WidthOf(text[index]);
        if (inside <= text.size())
            break;
        position += ContinuesParagraph(block.next()) ? 0 : 2;
    }
    return position;
}

int DocumentPositionOf(const QTextDocument& document, int textPosition) {
    int left = std::max(textPosition, 0);
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QString text = block.text();
        for (int index = 0; index < text.size(); ++index) {
            const int width = WidthOf(text[index]);
            if (left < width || (left == 0 && width > 0))
                return block.position() + index;
            left -= width;
        }
        const QTextBlock next = block.next();
        if (ContinuesParagraph(next))
            continue;
        if (left < 2 || !next.isValid())
            return block.position() + static_cast<int>(text.size());
        left -= 2;
    }
    return 0;
}

} // namespace pollarix
