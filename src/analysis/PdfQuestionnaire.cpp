#include "analysis/PdfQuestionnaire.h"

#include <QFile>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <memory>

#include "analysis/BlankSurvey.h"
#include "platform/base/ShownText.h"
#include "platform/files/Files.h"

namespace pollarix {

using statistics::SurveyQuestion;
using statistics::Variable;

namespace {

// Points, 72 to the inch: the painter's unit here.
constexpr double Margin = 54;
constexpr double FooterHeight = 20;
constexpr double Indent = 18;      // of responses
constexpr double BoxSize = 10;     // to tick
constexpr double BesideBox = 8;    // to its text
constexpr double BelowHeading = 6; // to the responses
constexpr double BelowLine = 3;    // between responses
constexpr double BelowQuestion = 18;
constexpr double WritingLine = 24; // from one line to write on to the next
constexpr int WritingLines = 4;
constexpr double LeastColumn = 40;    // of a scale's point in a table
constexpr double ShareOfItems = 0.38; // of a table's width
constexpr int PointSize = 11;
constexpr int SmallPointSize = 9;
constexpr int TitlePointSize = 16;
constexpr qsizetype LongestTarget = 40; // characters of a question that has no number

QFont FontOf(int points, bool bold = false) {
    QFont font("sans-serif");
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(points); // of a painter that counts in points
    font.setBold(bold);
    return font;
}

// Lines of a text in a width. Right to left where the text is.
class Lines {
  public:
    Lines(const QString& text, const QFont& font, double width, QPaintDevice* device) {
        for (const QString& paragraph : text.split('\n')) {
            auto layout = std::make_unique<QTextLayout>(paragraph, font, device);
            QTextOption option;
            option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
            layout->setTextOption(option);
            layout->setCacheEnabled(true);
            layout->beginLayout();
            for (QTextLine line = layout->createLine(); line.isValid();
                 line = layout->createLine()) {
                line.setLineWidth(width);
                line.setPosition({0, 0});
                lines_.push_back(line);
            }
            layout->endLayout();
            layouts_.push_back(std::move(layout));
        }
    }
    std::size_t Count() const { return lines_.size(); }
    double HeightOf(std::size_t line) const { return lines_.at(line).height(); }
    double Height() const {
        double height = 0;
        for (const QTextLine& line : lines_)
            height += line.height();
        return height;
    }
    void Draw(QPainter& painter, std::size_t line, double x, double y) const {
        lines_[line].draw(&painter, {x, y});
    }
    void DrawAll(QPainter& painter, double x, double y) const {
        for (const QTextLine& line : lines_) {
            line.draw(&painter, {x, y});
            y += line.height();
        }
    }

  private:
    std::vector<std::unique_ptr<QTextLayout>> layouts_;
    std::vector<QTextLine> lines_;
};

// Pages from top to bottom. The same work can be done without drawing, to know its height before.
class Paper {
  public:
    Paper(QFile& file, const QString& title) : writer_(&file), title_(title) {
        const bool inches = QLocale().measurementSystem() == QLocale::ImperialUSSystem;
        writer_.setPageSize(QPageSize(inches ? QPageSize::Letter : QPageSize::A4));
        writer_.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer_.setResolution(Resolution);
        writer_.setTitle(title);
        writer_.setCreator("Pollarix");
        const QSizeF size = writer_.pageLayout().fullRect(QPageLayout::Point).size();
        width_ = size.width() - 2 * Margin;
        bottom_ = size.height() - Margin - FooterHeight;
        if (!painter_.begin(&writer_))
            throw Failure(failure::PathOrFileAccess, file.fileName() + ": " + file.errorString());
        painter_.scale(Resolution / 72.0, Resolution / 72.0);
        Footer();
    }
    void End() { painter_.end(); }

    double Width() const { return width_; }
    double FullHeight() const { return bottom_ - Margin; }
    QPainter& Painter() { return painter_; }
    QPaintDevice* Device() { return &writer_; }
    double Y() const { return y_; }
    double Left() const { return Margin; }
    bool IsMeasuring() const { return measuring_; }

    // Height of what the work would draw on a page without end.
    template <typename Work> double HeightOf(const Work& work) {
        const double before = y_;
        measuring_ = true;
        y_ = 0;
        work();
        measuring_ = false;
        return std::exchange(y_, before);
    }
    // Goes to the next page unless there is room for so much on this one. True when it did.
    bool Need(double height) {
        if (measuring_ || y_ + height <= bottom_ || y_ <= Margin)
            return false;
        writer_.newPage();
        ++page_;
        y_ = Margin;
        Footer();
        return true;
    }
    void Down(double height) { y_ += height; }

    void Text(const QString& text, const QFont& font, double indent = 0) {
        const Lines lines(text, font, width_ - indent, Device());
        for (std::size_t i = 0; i < lines.Count(); ++i) {
            Need(lines.HeightOf(i));
            if (!measuring_)
                lines.Draw(painter_, i, Margin + indent, y_);
            Down(lines.HeightOf(i));
        }
    }
    // At the line's middle, in height.
    void Box(double x, double lineHeight, bool isRound) {
        if (measuring_)
            return;
        const QRectF box(x, y_ + (lineHeight - BoxSize) / 2, BoxSize, BoxSize);
        painter_.setPen(QPen(Qt::black, 0.8));
        if (isRound)
            painter_.drawEllipse(box);
        else
            painter_.drawRect(box);
    }
    void Rule(double x, double width, double pen) {
        if (measuring_)
            return;
        painter_.setPen(QPen(Qt::darkGray, pen));
        painter_.drawLine(QPointF(x, y_), QPointF(x + width, y_));
        painter_.setPen(Qt::black);
    }

  private:
    static constexpr int Resolution = 1200;

    void Footer() {
        const Lines number(QString::number(page_), FontOf(SmallPointSize), width_, Device());
        const Lines title(Shortened(title_, 80), FontOf(SmallPointSize), width_ - Margin, Device());
        const double y = bottom_ + FooterHeight - number.Height();
        title.Draw(painter_, 0, Margin, y);
        const QFontMetricsF metrics(FontOf(SmallPointSize), Device());
        number.Draw(painter_, 0,
                    Margin + width_ - metrics.horizontalAdvance(QString::number(page_)), y);
    }

    QPdfWriter writer_;
    QPainter painter_;
    QString title_;
    double width_ = 0;
    double bottom_ = 0;
    double y_ = Margin;
    int page_ = 1;
    bool measuring_ = false;
};

class Form {
  public:
    Form(Paper& paper, const BlankSurvey& survey) : paper_(paper), survey_(survey) {}

    // Not parted where it fits on a page.
    void Write(std::size_t place) {
        const auto work = [&] { Draw(place); };
        const double height = paper_.HeightOf(work);
        paper_.Need(std::min(height, paper_.FullHeight()));
        work();
        paper_.Down(BelowQuestion);
    }

  private:
    void Draw(std::size_t place) {
        const SurveyQuestion& question = survey_.variables.questions[place];
        paper_.Text(survey_.NumberOf(place) + survey_.texts[place],
                    FontOf(PointSize, question.qtype != kind::Text));
        paper_.Down(BelowHeading);
        if (question.qtype == kind::OpenEnded) {
            for (int line = 0; line < WritingLines; ++line) {
                paper_.Need(WritingLine);
                paper_.Down(WritingLine);
                paper_.Rule(paper_.Left(), paper_.Width(), 0.6);
            }
            return;
        }
        if (question.variableCount == 0)
            return;
        if (question.qtype == kind::Radio) {
            Hint("Please select just one of the following.");
            const Variable& variable = Item(question, 0);
            for (std::size_t code = 0; code < variable.categories.size(); ++code)
                Choice(variable.categories[code] + Jump(question.jumps[code]), true, Indent);
        } else if (question.qtype == kind::Check) {
            Hint("Please select any of the following.");
            for (std::size_t i = 0; i < question.variableCount; ++i)
                Choice(Item(question, i).item, false, Indent);
        } else if (FitsTable(question)) {
            Table(question);
        } else {
            for (std::size_t i = 0; i < question.variableCount; ++i) {
                paper_.Down(BelowLine);
                paper_.Text(Item(question, i).item, FontOf(PointSize), Indent);
                for (const QString& point : Item(question, i).categories)
                    Choice(point, true, 2 * Indent);
            }
        }
    }

    const Variable& Item(const SurveyQuestion& question, std::size_t item) const {
        return survey_.variables.variables[question.firstVariable + item];
    }

    void Hint(const QString& text) {
        paper_.Text(text, FontOf(SmallPointSize));
        paper_.Down(BelowLine);
    }

    // Where an answer leads. A target that is gone leads nowhere.
    QString Jump(int target) const {
        if (target < 0)
            return {};
        const auto place = static_cast<std::size_t>(target);
        QString name = survey_.variables.questions[place].number;
        if (survey_.NumberOf(place).isEmpty())
            name = '"' + Shortened(survey_.texts[place].simplified(), LongestTarget) + '"';
        return QString::fromUtf8("   \xE2\x86\x92 go to ") + name;
    }

    void Choice(const QString& text, bool isRound, double indent) {
        const double textIndent = indent + BoxSize + BesideBox;
        const Lines lines(text, FontOf(PointSize), paper_.Width() - textIndent, paper_.Device());
        for (std::size_t i = 0; i < lines.Count(); ++i) {
            paper_.Need(lines.HeightOf(i));
            if (i == 0)
                paper_.Box(paper_.Left() + indent, lines.HeightOf(0), isRound);
            if (!paper_.IsMeasuring())
                lines.Draw(paper_.Painter(), i, paper_.Left() + textIndent, paper_.Y());
            paper_.Down(lines.HeightOf(i));
        }
        paper_.Down(BelowLine);
    }

    double ColumnWidth(const SurveyQuestion& question) const {
        return paper_.Width() * (1 - ShareOfItems) /
               static_cast<double>(std::max<std::size_t>(1, Item(question, 0).categories.size()));
    }
    // All rows have the same points, and their names have room above the boxes.
    bool FitsTable(const SurveyQuestion& question) const {
        const std::vector<QString>& points = Item(question, 0).categories;
        for (std::size_t i = 1; i < question.variableCount; ++i)
            if (Item(question, i).categories != points)
                return false;
        return ColumnWidth(question) >= LeastColumn &&
               HeadHeight(question) < paper_.FullHeight() / 4;
    }
    Lines HeadOf(const SurveyQuestion& question, std::size_t point) const {
        return Lines(Item(question, 0).categories[point], FontOf(SmallPointSize),
                     ColumnWidth(question) - 4, paper_.Device());
    }
    double HeadHeight(const SurveyQuestion& question) const {
        double height = 0;
        for (std::size_t i = 0; i < Item(question, 0).categories.size(); ++i)
            height = std::max(height, HeadOf(question, i).Height());
        return height;
    }
    double BoxColumn(const SurveyQuestion& question, std::size_t point) const {
        return paper_.Left() + paper_.Width() * ShareOfItems +
               ColumnWidth(question) * static_cast<double>(point);
    }

    void TableHead(const SurveyQuestion& question) {
        const double height = HeadHeight(question);
        if (!paper_.IsMeasuring())
            for (std::size_t i = 0; i < Item(question, 0).categories.size(); ++i) {
                const Lines head = HeadOf(question, i);
                head.DrawAll(paper_.Painter(), BoxColumn(question, i),
                             paper_.Y() + height - head.Height());
            }
        paper_.Down(height + BelowLine);
        paper_.Rule(paper_.Left(), paper_.Width(), 0.4);
    }

    void Table(const SurveyQuestion& question) {
        TableHead(question);
        for (std::size_t i = 0; i < question.variableCount; ++i) {
            const Lines item(Item(question, i).item, FontOf(PointSize),
                             paper_.Width() * ShareOfItems - BesideBox, paper_.Device());
            paper_.Down(BelowLine);
            // A text that is longer than a page is cut at its end.
            const double height = std::min(item.Height(), paper_.FullHeight() / 2);
            if (paper_.Need(height + 2 * BelowLine))
                TableHead(question);
            const double line = item.HeightOf(0);
            for (std::size_t point = 0; point < Item(question, 0).categories.size(); ++point)
                paper_.Box(BoxColumn(question, point), line, true);
            double drawn = 0;
            for (std::size_t l = 0; l < item.Count() && drawn + item.HeightOf(l) <= height + 0.1;
                 ++l) {
                if (!paper_.IsMeasuring())
                    item.Draw(paper_.Painter(), l, paper_.Left(), paper_.Y() + drawn);
                drawn += item.HeightOf(l);
            }
            paper_.Down(drawn + BelowLine);
            paper_.Rule(paper_.Left(), paper_.Width(), 0.2);
        }
    }

    Paper& paper_;
    const BlankSurvey& survey_;
};

} // namespace

void PdfQuestionnaire::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    PendingFile target(path);
    const BlankSurvey blank(survey);
    QFile file(target.Path());
    if (!file.open(QIODevice::WriteOnly))
        throw Failure(failure::PathOrFileAccess, path + ": " + file.errorString());
    {
        Paper paper(file, blank.title);
        paper.Text(blank.title, FontOf(TitlePointSize, true));
        paper.Down(BelowQuestion);
        Form form(paper, blank);
        const auto count = static_cast<std::int64_t>(blank.texts.size());
        for (std::int64_t i = 0; i < count; ++i) {
            step(i + 1, count);
            form.Write(static_cast<std::size_t>(i));
        }
        paper.End();
    }
    if (!file.flush() || file.error() != QFile::NoError)
        throw Failure(failure::PathOrFileAccess, path + ": " + file.errorString());
    file.close();
    target.Finish();
}

} // namespace pollarix
