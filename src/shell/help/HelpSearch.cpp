#include "shell/help/HelpSearch.h"

#include <QHelpEngineCore>
#include <QRegularExpression>
#include <QSet>
#include <QTextDocument>

#include <algorithm>
#include <cmath>

namespace pollarix {

namespace {

// What a word counts for: in a topic's title, among its entries of the index, and as the longer
// word that begins with the one looked for.
constexpr double InTitle = 8;
constexpr double InIndex = 4;
constexpr double AsBeginning = 0.25;

constexpr int ShortestStem = 3; // letters
constexpr int ExtractBefore = 30;
constexpr int ExtractLength = 110;

QRegularExpressionMatchIterator WordsIn(const QString& text) {
    static const QRegularExpression word(R"([\p{L}\p{N}]+)");
    return word.globalMatch(text);
}

// The word without the endings of its other forms: "copies", "copied" and "copy" have the same.
QString StemOf(const QString& word) {
    QString stem = word.toLower();
    const auto cut = [&](const char* ending, const char* instead = "") {
        const QLatin1String end(ending);
        const QString rest = stem.chopped(std::min(end.size(), stem.size())) + instead;
        if (!stem.endsWith(end) || rest.size() < ShortestStem)
            return false;
        stem = rest;
        return true;
    };
    const bool plural = cut("ies", "y") || cut("sses", "ss") || cut("xes", "x") ||
                        cut("ches", "ch") || cut("shes", "sh");
    if (!plural && !stem.endsWith(QLatin1String("ss")))
        cut("s");
    if (cut("ied", "y"))
        return stem;
    if (cut("ing") || cut("ed")) {
        // "skipping" is of "skip", but "filling" of "fill".
        const QChar last = stem.back();
        if (last == stem[stem.size() - 2] && !QString("lsz").contains(last) &&
            stem.size() > ShortestStem)
            stem.chop(1);
    }
    cut("e");
    return stem;
}

QStringList StemsOf(const QString& typed) {
    static const QSet<QString> common = {
        "a",    "an",   "and",   "are",   "at",  "be",   "can",  "do",    "does", "for",
        "from", "get",  "how",   "i",     "in",  "is",   "it",   "me",    "my",   "of",
        "on",   "or",   "s",     "so",    "t",   "that", "the",  "there", "this", "to",
        "what", "when", "where", "which", "why", "will", "with", "you",   "your"};
    QStringList stems;
    for (auto word = WordsIn(typed); word.hasNext();) {
        const QString found = word.next().captured();
        if (!common.contains(found.toLower()))
            stems << StemOf(found);
    }
    stems.removeDuplicates();
    return stems;
}

// The page's entries of the index, as its author wrote them; what follows an "@" is a place.
QString IndexEntriesIn(const QString& html) {
    static const QRegularExpression keywords(R"re(name="keywords" content="([^"]*)")re");
    static const QRegularExpression place("@[^;]*");
    return keywords.match(html).captured(1).remove(place);
}

} // namespace

void HelpSearch::ReadPages() {
    for (const QString& name : engine_.registeredDocumentations()) {
        for (const QUrl& address : engine_.files(name, QString(), "html")) {
            const QString html = QString::fromUtf8(engine_.fileData(address));
            QTextDocument document;
            document.setHtml(html);
            Page page{document.metaInformation(QTextDocument::DocumentTitle),
                      address,
                      document.toPlainText().remove(QChar::ObjectReplacementCharacter).simplified(),
                      {}};
            for (auto word = WordsIn(page.text); word.hasNext();)
                page.stems[StemOf(word.next().captured())] += 1;
            // Many times the same word is not many times as much.
            for (double& weight : page.stems)
                weight = 1 + std::log(weight);
            for (const QString& stem : StemsOf(IndexEntriesIn(html)))
                page.stems[stem] += InIndex;
            for (const QString& stem : StemsOf(page.title))
                page.stems[stem] += InTitle;
            pages_.push_back(std::move(page));
        }
    }
}

double HelpSearch::WeightOf(const QString& stem, const Page& page) {
    if (const auto exact = page.stems.constFind(stem); exact != page.stems.cend())
        return *exact;
    double weight = 0;
    for (auto other = page.stems.cbegin(); other != page.stems.cend(); ++other) {
        if (other.key().startsWith(stem))
            weight = std::max(weight, AsBeginning * other.value());
    }
    return weight;
}

QString HelpSearch::ExtractOf(const QStringList& stems, const Page& page) {
    // The page begins with its title, which stands above the extract already.
    qsizetype from = std::min(page.title.size() + 1, page.text.size());
    constexpr QChar Dots(0x2026);
    QString before;
    for (auto word = WordsIn(page.text); word.hasNext();) {
        const QRegularExpressionMatch match = word.next();
        const QString stem = StemOf(match.captured());
        if (match.capturedStart() < from ||
            std::none_of(stems.begin(), stems.end(),
                         [&](const QString& wanted) { return stem.startsWith(wanted); }))
            continue;
        if (match.capturedStart() - from > ExtractBefore) {
            from = page.text.indexOf(' ', match.capturedStart() - ExtractBefore) + 1;
            before = Dots;
        }
        break;
    }
    const QString extract = page.text.mid(from, ExtractLength);
    if (from + extract.size() == page.text.size())
        return before + extract;
    return before + extract.section(' ', 0, -2) + Dots;
}

std::vector<FoundTopic> HelpSearch::Search(const QString& typed) {
    if (pages_.empty())
        ReadPages();
    const QStringList stems = StemsOf(typed);
    std::vector<FoundTopic> all;
    std::vector<FoundTopic> some;
    for (const Page& page : pages_) {
        FoundTopic topic{page.title, {}, page.address};
        qsizetype found = 0;
        for (const QString& stem : stems) {
            const double weight = WeightOf(stem, page);
            found += weight > 0 ? 1 : 0;
            topic.weight += weight;
        }
        if (found == 0)
            continue;
        topic.extract = ExtractOf(stems, page);
        (found == stems.size() ? all : some).push_back(std::move(topic));
    }
    std::vector<FoundTopic>& best = all.empty() ? some : all;
    std::stable_sort(best.begin(), best.end(), [](const FoundTopic& left, const FoundTopic& right) {
        return left.weight > right.weight;
    });
    return std::move(best);
}

} // namespace pollarix
