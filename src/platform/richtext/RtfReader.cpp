// Reading rich text: the same parser gives the runs and the bare text, so that both always agree.
#include "platform/richtext/RichText.h"

#include <optional>
#include <utility>
#include <vector>

#include "platform/base/TextUnits.h"
#include "platform/richtext/RtfParser.h"

namespace pollarix {

namespace {

class PlainSink {
  public:
    static constexpr bool WantsFormats = false;
    void Begin() {
        if (std::exchange(begun_, true))
            text_ += QLatin1String("\r\n");
    }
    void Text(QStringView text) { text_.append(text); }
    void End(bool) {}
    QString Take() { return std::move(text_); }

  private:
    QString text_;
    bool begun_ = false;
};

class RichSink {
  public:
    static constexpr bool WantsFormats = true;
    RichSink() { text_.paragraphs.clear(); }
    void Begin() {
        text_.paragraphs.emplace_back();
        sameRun_ = false;
    }
    void SetFormat(RunFormat format) {
        if (format == format_)
            return;
        format_ = std::move(format);
        sameRun_ = false;
    }
    void Text(QStringView text) {
        std::vector<Run>& runs = text_.paragraphs.back().runs;
        if (!std::exchange(sameRun_, true))
            runs.push_back({{}, format_});
        runs.back().text.append(text);
    }
    void End(bool bullet) { text_.paragraphs.back().bullet = bullet; }
    RichText Take() {
        if (text_.paragraphs.empty())
            text_.paragraphs.emplace_back();
        return std::move(text_);
    }

  private:
    RichText text_;
    RunFormat format_;
    bool sameRun_ = false;
};

std::optional<QStringView> RtfIn(QStringView text) {
    qsizetype start = 0;
    while (start < text.size() && (text[start].isSpace() || text[start] == QChar::ByteOrderMark))
        ++start;
    const QStringView rtf = text.sliced(start);
    if (!rtf.startsWith(QLatin1String("{\\rtf")))
        return std::nullopt;
    return rtf;
}

} // namespace

RichText ReadRichText(QStringView source) {
    const auto text = RtfIn(source);
    if (!text)
        return RichText::FromPlainText(source.toString());
    RichSink sink;
    rtf::Parser(*text, sink).Run();
    return sink.Take();
}

QString PlainTextOf(QStringView source) {
    const auto text = RtfIn(source);
    PlainSink sink;
    if (text) {
        rtf::Parser(*text, sink).Run();
        return sink.Take();
    }
    const auto addText = [&](QStringView piece) { sink.Text(piece); };
    LineSplitter splitter;
    sink.Begin();
    splitter.Feed(source, addText, [&] { sink.Begin(); });
    splitter.Finish(addText);
    return sink.Take();
}

} // namespace pollarix
