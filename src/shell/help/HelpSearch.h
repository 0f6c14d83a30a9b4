// Full-text search in the help file. Takes words as people type them and finds the topics that
// have them all, else those that have some. The help is small enough to be kept in memory.
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <vector>

class QHelpEngineCore;

namespace pollarix {

struct FoundTopic {
    QString title;
    QString extract; // some words around the first place found
    QUrl address;
    double weight = 0; // the more, the better it fits
};

class HelpSearch {
  public:
    explicit HelpSearch(QHelpEngineCore& engine) : engine_(engine) {}

    // The best topics first. A word also finds its other forms, and longer words that begin with
    // it. Words that are too common to find anything by are left out; without any word nothing is
    // found. The first search reads the help.
    std::vector<FoundTopic> Search(const QString& typed);

  private:
    struct Page {
        QString title;
        QUrl address;
        QString text;
        QHash<QString, double> stems; // and how much the page is about each
    };

    void ReadPages();
    static double WeightOf(const QString& stem, const Page& page);
    static QString ExtractOf(const QStringList& stems, const Page& page);

    QHelpEngineCore& engine_;
    std::vector<Page> pages_;
};

} // namespace pollarix
