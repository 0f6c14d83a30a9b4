#include "shell/HelpSearch.h"

#include <QHelpEngineCore>
#include <QHelpSearchEngine>
#include <QRegularExpression>
#include <QSet>
#include <QTextDocumentFragment>
#include <QTimer>

namespace pollarix {

namespace {

constexpr int ProbePause = 50; // milliseconds

// Each word in quotes: to the index, anything else than letters and digits is a sign of its own.
QStringList WordsOf(const QString& typed) {
    static const QSet<QString> common = {
        "a",    "an",   "and",   "are",   "at",  "be",   "can",  "do",    "does", "for",
        "from", "get",  "i",     "how",   "in",  "is",   "it",   "me",    "my",   "of",
        "on",   "or",   "s",     "so",    "t",   "that", "the",  "there", "this", "to",
        "what", "when", "where", "which", "why", "will", "with", "you",   "your"};
    static const QRegularExpression word(R"([\p{L}\p{N}]+)");
    QStringList words;
    for (auto match = word.globalMatch(typed); match.hasNext();) {
        const QString found = match.next().captured();
        if (!common.contains(found.toLower()))
            words << '"' + found + '"';
    }
    return words;
}

} // namespace

HelpSearch::HelpSearch(QHelpEngineCore& engine, QObject* parent)
    : QObject(parent), engine_(new QHelpSearchEngine(&engine, this)) {
    connect(engine_, &QHelpSearchEngine::indexingFinished, this, &HelpSearch::Probe);
    connect(engine_, &QHelpSearchEngine::searchingFinished, this, [this] { Take(); });
    engine_->reindexDocumentation();
}

// The search library says that it has finished a little before anything is found. So a word that is
// everywhere is looked for until it is there.
void HelpSearch::Probe() {
    if (!indexed_)
        engine_->search("\"the\"");
}

void HelpSearch::Search(const QString& words) {
    words_ = WordsOf(words);
    anyWord_ = false;
    waiting_ = true;
    if (indexed_)
        Start();
}

void HelpSearch::Start() {
    if (words_.isEmpty()) {
        waiting_ = false;
        if (Found)
            Found({});
        return;
    }
    engine_->search(words_.join(anyWord_ ? " OR " : " AND "));
}

void HelpSearch::Take() {
    if (!indexed_) {
        indexed_ = engine_->searchResultCount() > 0 || --probes_ == 0;
        if (!indexed_)
            QTimer::singleShot(ProbePause, this, &HelpSearch::Probe);
        else if (waiting_)
            Start();
        return;
    }
    if (!waiting_)
        return;
    if (engine_->searchResultCount() == 0 && !anyWord_ && words_.size() > 1) {
        anyWord_ = true;
        Start();
        return;
    }
    waiting_ = false;
    std::vector<FoundTopic> topics;
    for (const QHelpSearchResult& result : engine_->searchResults(0, engine_->searchResultCount()))
        topics.push_back(
            {result.title(),
             QTextDocumentFragment::fromHtml(result.snippet()).toPlainText().simplified(),
             result.url()});
    if (Found)
        Found(topics);
}

} // namespace pollarix
