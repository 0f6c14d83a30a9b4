// Puts paragraphs and formatted text into the codes of RTF, as pure ASCII bytes. Only the codes:
// who keeps the bytes, and how many at a time, is the writers' business.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QStringView>

#include <utility>

#include "platform/richtext/RichText.h"

namespace pollarix::rtf {

class Encoder {
  public:
    // Some readers format Hebrew, Arabic and the like by codes of their own and pass over the usual
    // ones. Both writes these as well.
    enum class Scripts { Plain, Both };

    explicit Encoder(Scripts scripts = Scripts::Plain);

    // All that the bytes of what follows depend on. A writer that keeps pieces of a text goes on
    // behind one of them with Resume.
    struct State {
        RunFormat wanted = {};
        RunFormat current = {};
        bool inBullets = false;
        bool blankDue = true; // the last code was a word: a blank has to end it
        QList<QString> fontsInOrder = {};
        QList<QRgb> coloursInOrder = {};
        QHash<QString, int> fonts = {}; // to their numbers
        QHash<QRgb, int> colours = {};

        bool operator==(const State& other) const {
            return wanted == other.wanted && current == other.current &&
                   inBullets == other.inBullets && blankDue == other.blankDue &&
                   fontsInOrder == other.fontsInOrder && coloursInOrder == other.coloursInOrder;
        }
    };
    const State& Now() const { return now_; }
    void Resume(const State& state) {
        now_ = state;
        font_ = -1;
    }

    // Lines without bullets as they were encoded once, with what that depended on.
    struct Piece {
        RunFormat wanted = {};
        RunFormat before = {}; // the current format where it began
        bool blankBefore = false;
        bool blankAfter = false;
        QByteArray bytes = {}; // empty: nothing is kept
    };
    // Adds it where the bytes would be the same; false where they would not, and nothing is added.
    bool AddAgain(const Piece& piece);

    // Paragraph by paragraph, from the first.
    void BeginParagraph(bool bullet);
    void EndParagraph();
    // For the text that follows; normalised.
    void SetFormat(const RunFormat& format) { now_.wanted = format; }
    // Writes the format's codes now, where Text would have written them with the next text.
    void ApplyFormat();
    // Units that may stand in a run, see TextUnits.h.
    void Text(QStringView text);

    // Enters a font in the font table, if it is new. The default font, "", always stands there.
    void EnterFont(const QString& name);
    bool HasFont(const QString& name) const { return now_.fonts.contains(name); }
    // What an entry takes in the font table, at most.
    static qsizetype FontEntrySize(const QString& name);

    // The bytes of the body since the last taking.
    qsizetype PendingSize() const { return body_.size(); }
    const QByteArray& Pending() const { return body_; }
    QByteArray TakeBody() { return std::exchange(body_, {}); }

    // What stands before the body, with the fonts and colours known up to now. The font table is
    // filled up to the given size with line ends, which readers pass over.
    QByteArray Head(qsizetype fontTableSize = 0) const;
    // What stands behind it.
    static QByteArray Tail() { return "}"; }

  private:
    void ComplexFormat(int font, int halfPoints);
    void Number(const char* word, int value);
    void Switch(const char* word, bool& current, bool wanted);

    Scripts scripts_;
    QByteArray body_;
    State now_;
    int font_ = -1; // number of the current format's font; -1 where it was not looked up
};

} // namespace pollarix::rtf
