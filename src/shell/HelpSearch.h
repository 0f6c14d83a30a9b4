// Full-text search in the help file. Takes words as people type them and finds the topics that
// have them all, else those that have some.
#pragma once

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <vector>

class QHelpEngineCore;
class QHelpSearchEngine;

namespace pollarix {

struct FoundTopic {
    QString title;
    QString extract; // some words around the first place found, plain text
    QUrl address;
};

class HelpSearch : public QObject {
    Q_OBJECT
  public:
    HelpSearch(QHelpEngineCore& engine, QObject* parent);

    // Starts a search; it ends with Found, at once or later. Words that are too common to find
    // anything by are left out; without any word nothing is found.
    void Search(const QString& words);

    // What was found, the best first. Raised once for each search that wasn't overtaken by another.
    std::function<void(const std::vector<FoundTopic>&)> Found;

  private:
    void Probe();
    void Start();
    void Take();

    QHelpSearchEngine* engine_;
    QStringList words_;
    bool indexed_ = false; // the help can be searched
    int probes_ = 100;     // left, until that is taken for granted
    bool waiting_ = false; // a search is wanted or under way
    bool anyWord_ = false; // the second try: some of the words
};

} // namespace pollarix
