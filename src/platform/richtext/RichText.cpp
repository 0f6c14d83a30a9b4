#include "platform/richtext/RichText.h"

#include <cmath>
#include <utility>

#include "platform/base/TextUnits.h"

namespace pollarix {

namespace {

constexpr double MaxFontSize = 1638;
constexpr qsizetype MaxFontNameLength = 64;

QString NormalisedFontName(const QString& name) {
    QString kept;
    for (QChar unit : name.left(MaxFontNameLength)) {
        // ";" ends a name in the font table.
        if (unit != ';' && KindOf(unit.unicode()) == UnitKind::Plain)
            kept += unit;
    }
    kept = kept.trimmed();
    return kept == QLatin1String(RichText::DefaultFontName) ? QString() : kept;
}

double NormalisedFontSize(double points) {
    if (!(points > 0))
        return 0;
    const double halves = std::round(std::min(points, MaxFontSize) * 2) / 2;
    return halves == RichText::DefaultFontSize ? 0 : std::max(halves, 0.5);
}

} // namespace

RunFormat Normalised(RunFormat format) {
    if (!format.fontName.isEmpty())
        format.fontName = NormalisedFontName(format.fontName);
    format.fontSize = NormalisedFontSize(format.fontSize);
    if (format.colour) {
        if (format.colour->isValid())
            format.colour = QColor(format.colour->rgb());
        else
            format.colour.reset();
    }
    return format;
}

RichText::RichText() : paragraphs(1) {}

RichText RichText::FromPlainText(const QString& text) {
    RichText rich;
    QString line;
    const auto endLine = [&] {
        if (!line.isEmpty())
            rich.paragraphs.back().runs.push_back({std::exchange(line, {}), {}});
    };
    const auto addText = [&](QStringView piece) { line.append(piece); };
    LineSplitter splitter;
    splitter.Feed(text, addText, [&] {
        endLine();
        rich.paragraphs.emplace_back();
    });
    splitter.Finish(addText);
    endLine();
    return rich;
}

QString RichText::PlainText() const {
    QString text;
    bool first = true;
    for (const Paragraph& paragraph : paragraphs) {
        if (!std::exchange(first, false))
            text += QLatin1String("\r\n");
        for (const Run& run : paragraph.runs)
            text += run.text;
    }
    return text;
}

} // namespace pollarix
