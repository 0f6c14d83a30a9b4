#include "platform/richtext/RichText.h"

#include <algorithm>
#include <array>

#include "platform/base/TextUnits.h"
#include "platform/files/Files.h"
#include "platform/richtext/RtfEncoder.h"

namespace pollarix {

namespace {

constexpr qsizetype BlockSize = 1 << 16;

// The head is written first and filled in at the end, when all fonts are known: this much room is
// kept for its font table.
constexpr qsizetype FontTableSize = 512;

} // namespace

struct RichTextFileWriter::State {
    explicit State(const QString& path) : file(path) {
        fontTableUsed = rtf::Encoder::FontEntrySize({});
        file.Write(encoder.Head(FontTableSize));
        encoder.BeginParagraph(false);
    }
    void Flush() { file.Write(encoder.TakeBody()); }

    WholeFile file;
    rtf::Encoder encoder{rtf::Encoder::Scripts::Both};
    LineSplitter splitter;
    RunFormat format;
    qsizetype fontTableUsed;
};

// The first of its kind in a paragraph, and the others, are two.
struct RepeatedText::Encoded {
    std::array<rtf::Encoder::Piece, 2> pieces;
    std::size_t oldest = 0;

    void Keep(rtf::Encoder::Piece piece) {
        pieces[oldest] = std::move(piece);
        oldest = (oldest + 1) % pieces.size();
    }
};

RepeatedText::RepeatedText(const QString& text) : text_(text) {
    const QString lines = QString(text).remove("\r\n");
    const bool plain = std::all_of(lines.begin(), lines.end(), [](QChar unit) {
        return KindOf(unit.unicode()) == UnitKind::Plain;
    });
    if (plain && text.size() < BlockSize / 8) // which no encoding fills a block with
        encoded_ = std::make_shared<Encoded>();
}

RichTextFileWriter::RichTextFileWriter(const QString& path)
    : state_(std::make_unique<State>(path)) {}

RichTextFileWriter::~RichTextFileWriter() = default;

void RichTextFileWriter::SetSelBold(bool bold) {
    state_->format.bold = bold;
    state_->encoder.SetFormat(state_->format);
}

double RichTextFileWriter::SelFontSize() const {
    return state_->format.fontSize > 0 ? state_->format.fontSize : RichText::DefaultFontSize;
}

void RichTextFileWriter::SetSelFontSize(double points) {
    state_->format.fontSize = points;
    state_->format = Normalised(state_->format);
    state_->encoder.SetFormat(state_->format);
}

QString RichTextFileWriter::SelFontName() const {
    return state_->format.fontName.isEmpty() ? QString(RichText::DefaultFontName)
                                             : state_->format.fontName;
}

void RichTextFileWriter::SetSelFontName(const QString& name) {
    QString font = Normalised({.fontName = name}).fontName;
    if (!state_->encoder.HasFont(font)) {
        const qsizetype size = rtf::Encoder::FontEntrySize(font);
        if (state_->fontTableUsed + size > FontTableSize) {
            font.clear();
        } else {
            state_->fontTableUsed += size;
            state_->encoder.EnterFont(font);
        }
    }
    state_->format.fontName = font;
    state_->encoder.SetFormat(state_->format);
}

void RichTextFileWriter::Append(QStringView text) {
    rtf::Encoder& encoder = state_->encoder;
    state_->splitter.Feed(
        text,
        [&](QStringView piece) {
            encoder.Text(piece);
            if (encoder.PendingSize() >= BlockSize)
                state_->Flush();
        },
        [&] {
            encoder.ApplyFormat(); // it says how high an empty line is
            encoder.EndParagraph();
            encoder.BeginParagraph(false);
        });
    if (encoder.PendingSize() >= BlockSize)
        state_->Flush();
}

void RichTextFileWriter::Append(const RepeatedText& text) {
    rtf::Encoder& encoder = state_->encoder;
    if (!text.encoded_ || !state_->splitter.IsBetweenUnits()) {
        Append(text.Text());
        return;
    }
    for (const rtf::Encoder::Piece& piece : text.encoded_->pieces) {
        if (encoder.AddAgain(piece)) {
            state_->splitter.Passed();
            if (encoder.PendingSize() >= BlockSize)
                state_->Flush();
            return;
        }
    }
    state_->Flush(); // so that no block ends within what is kept
    rtf::Encoder::Piece piece;
    piece.wanted = encoder.Now().wanted;
    piece.before = encoder.Now().current;
    piece.blankBefore = encoder.Now().blankDue;
    Append(text.Text());
    piece.blankAfter = encoder.Now().blankDue;
    piece.bytes = encoder.Pending();
    text.encoded_->Keep(std::move(piece));
}

void RichTextFileWriter::Save() {
    state_->splitter.Finish([&](QStringView piece) { state_->encoder.Text(piece); });
    state_->encoder.EndParagraph();
    state_->Flush();
    state_->file.Write(state_->encoder.Tail());
    state_->file.RewriteBeginning(state_->encoder.Head(FontTableSize));
    state_->file.Finish();
}

} // namespace pollarix
