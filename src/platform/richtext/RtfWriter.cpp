#include "platform/base/TextUnits.h"
#include "platform/richtext/RichText.h"
#include "platform/richtext/RtfEncoder.h"

namespace pollarix {

QString WriteRichText(const RichText& text) {
    rtf::Encoder encoder;
    const auto addText = [&](QStringView piece) { encoder.Text(piece); };
    for (const Paragraph& paragraph : text.paragraphs) {
        encoder.BeginParagraph(paragraph.bullet);
        // A run should hold no line end; one that does becomes paragraphs, as the reader would have
        // it.
        LineSplitter splitter;
        for (const Run& run : paragraph.runs) {
            encoder.SetFormat(Normalised(run.format));
            splitter.Feed(run.text, addText, [&] {
                encoder.EndParagraph();
                encoder.BeginParagraph(false);
            });
        }
        splitter.Finish(addText);
        encoder.EndParagraph();
    }
    return QString::fromLatin1(encoder.Head() + encoder.TakeBody() + encoder.Tail());
}

} // namespace pollarix
