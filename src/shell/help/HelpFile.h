// The program's help: opens the help file when it is first asked for, and shows its topics in the
// one help window. Which topic a number, screen or dialog has is written in the help file itself.
#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>

class QHelpEngine;

namespace pollarix {

class HelpWindow;

class HelpFile {
  public:
    // Numbers of topics.
    static constexpr int Contents = 1;
    static constexpr int Tutorial = 3;

    HelpFile();
    ~HelpFile();
    HelpFile(const HelpFile&) = delete;
    HelpFile& operator=(const HelpFile&) = delete;

    // The file the topics come from. Nothing is opened yet.
    void SetPath(const QString& path) { path_ = path; }

    // All of these throw FileNotFound or PathOrFileAccess when the help file can't be read.
    void ShowTopic(int number);
    // The topic of a screen or dialog, by its name. False when it has none.
    bool ShowTopicOf(const QString& name);
    void ShowIndex();
    void ShowSearch();

    // The address of a topic by number or name, empty when there is none.
    QUrl AddressOf(int number) { return AddressOf("topic." + QString::number(number)); }
    QUrl AddressOf(const QString& name);

    QHelpEngine& Engine();
    HelpWindow& Window();

  private:
    QString path_;
    // What the help library notes down about the file for itself: made anew in every run, so that
    // no file of an earlier version or of a second running program comes between.
    std::unique_ptr<QTemporaryDir> notes_;
    std::unique_ptr<QHelpEngine> engine_;
    std::unique_ptr<HelpWindow> window_;
};

} // namespace pollarix
