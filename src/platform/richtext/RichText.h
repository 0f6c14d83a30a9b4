// Rich text as a value: paragraphs of runs. With it come the reader and the writer of its file form
// (RTF), and the writer that report builders work with. No widget here; the
// visible editor is RichTextBox.
#pragma once

#include <QColor>
#include <QString>
#include <QStringView>

#include <memory>
#include <optional>
#include <vector>

namespace pollarix {

struct RunFormat {
    QString fontName;    // "" for the default font
    double fontSize = 0; // points, halves allowed; 0 for the default size
    bool bold = false;
    bool italic = false;
    bool underline = false;
    std::optional<QColor> colour = {}; // none for the window's own text colour
    bool operator==(const RunFormat&) const = default;
};

// The one form of formats that look alike: the default font and size unnamed, sizes in halves, the
// colour valid and opaque or none. Reader and writer give and keep this form only.
RunFormat Normalised(RunFormat format);

struct Run {
    QString text; // no line ends; a tab is '\t'
    RunFormat format;
    bool operator==(const Run&) const = default;
};

struct Paragraph {
    std::vector<Run> runs;
    bool bullet = false;
    bool operator==(const Paragraph&) const = default;
};

// At least one paragraph, always. The default font is named once for the whole text.
class RichText {
  public:
    static constexpr const char* DefaultFontName = "DejaVu Sans";
    static constexpr double DefaultFontSize = 10;

    RichText();
    static RichText FromPlainText(const QString& text); // CR LF, LF and CR end a paragraph

    std::vector<Paragraph> paragraphs;

    // Paragraphs joined with CR LF; no line end behind the last.
    QString PlainText() const;
    bool operator==(const RichText&) const = default;
};

// Reads rich text. Text that does not begin with "{\rtf" (blanks before it skipped) is taken as
// plain text. Never fails and never hangs, whatever the text holds; linear in its length.
RichText ReadRichText(QStringView source);

// The plain text of the same reading, without building the runs: the way of txtTemp.
QString PlainTextOf(QStringView source);

// Writes rich text: pure ASCII, any script kept. Stable: writing what was read from written text
// gives the same bytes.
QString WriteRichText(const RichText& text);

// A text that is appended very often: what it was encoded to is kept with it.
class RepeatedText {
  public:
    explicit RepeatedText(const QString& text);
    const QString& Text() const { return text_; }

  private:
    friend class RichTextFileWriter;
    struct Encoded;
    QString text_;
    std::shared_ptr<Encoded> encoded_; // none where it can't be kept
};

// Writes a rich text file as it grows, in bounded memory: the report builders' hidden box, whose
// caret always stands at the end. Formats hold for the text appended after they are set. The file
// at the path is replaced only by Save, when the whole text is on disk (written beside it, flushed,
// then renamed); without Save it stays as it was.
class RichTextFileWriter {
  public:
    // Begins a new text in a temporary file beside the path. Throws PathOrFileAccess with the
    // path and the system's words.
    explicit RichTextFileWriter(const QString& path);
    ~RichTextFileWriter();
    RichTextFileWriter(const RichTextFileWriter&) = delete;
    RichTextFileWriter& operator=(const RichTextFileWriter&) = delete;

    void SetSelBold(bool bold);
    double SelFontSize() const;
    void SetSelFontSize(double points);
    QString SelFontName() const;
    void SetSelFontName(const QString& name);
    // Appends; CR LF, LF and CR end a paragraph. Throws PathOrFileAccess when the disk is full.
    void Append(QStringView text);
    void Append(const RepeatedText& text);
    void Save();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace pollarix
