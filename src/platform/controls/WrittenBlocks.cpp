#include "platform/controls/WrittenBlocks.h"

#include <QTextBlock>
#include <QTextDocument>

#include "platform/base/TextUnits.h"
#include "platform/controls/LongParagraphs.h"
#include "platform/controls/RichTextDocument.h"
#include "platform/richtext/RtfEncoder.h"

namespace pollarix {

namespace {

// Good for as long as the block is not changed and what stands before it ends in the same state.
struct Written : QTextBlockUserData {
    rtf::Encoder::State before;
    rtf::Encoder::State after;
    bool isFirst = false;
    bool continues = false;
    QByteArray bytes;
};

void WriteBlock(rtf::Encoder& encoder, const QTextBlock& block, bool isFirst, bool continues) {
    if (!isFirst && !continues)
        encoder.EndParagraph();
    if (!continues)
        encoder.BeginParagraph(IsBullet(block));
    const auto addText = [&](QStringView piece) { encoder.Text(piece); };
    LineSplitter splitter;
    for (auto at = block.begin(); !at.atEnd(); ++at) {
        const QTextFragment fragment = at.fragment();
        encoder.SetFormat(RunFormatOf(fragment.charFormat()));
        splitter.Feed(fragment.text(), addText, [&] {
            encoder.EndParagraph();
            encoder.BeginParagraph(false);
        });
    }
    splitter.Finish(addText);
}

} // namespace

WrittenBlocks::WrittenBlocks(QTextDocument& document) : QObject(&document), document_(document) {
    connect(&document, &QTextDocument::contentsChange, this,
            [this](int from, int, int added) { Forget(from, added); });
}

void WrittenBlocks::Forget(int from, int added) {
    QTextBlock block = document_.findBlock(from);
    for (; block.isValid() && block.position() <= from + added; block = block.next())
        block.setUserData(nullptr);
}

QString WrittenBlocks::Rtf() const {
    rtf::Encoder encoder;
    QByteArray body;
    for (QTextBlock block = document_.begin(); block.isValid(); block = block.next()) {
        const bool isFirst = block == document_.begin();
        const bool continues = ContinuesParagraph(block);
        auto* written = static_cast<Written*>(block.userData());
        if (!written || written->isFirst != isFirst || written->continues != continues ||
            !(written->before == encoder.Now())) {
            written = new Written; // the block's
            written->before = encoder.Now();
            WriteBlock(encoder, block, isFirst, continues);
            written->after = encoder.Now();
            written->isFirst = isFirst;
            written->continues = continues;
            written->bytes = encoder.TakeBody();
            block.setUserData(written);
        } else {
            encoder.Resume(written->after);
        }
        body += written->bytes;
    }
    encoder.EndParagraph();
    return QString::fromLatin1(encoder.Head() + body + encoder.TakeBody() + encoder.Tail());
}

} // namespace pollarix
