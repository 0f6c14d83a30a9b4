// The window the help shows in: contents, index and search beside the page. It stays usable while a
// dialog waits for an answer, since that is when help is wanted.
#pragma once

#include <QMainWindow>
#include <QUrl>

#include "shell/help/HelpSearch.h"

class QHelpContentWidget;
class QHelpEngine;
class QHelpIndexWidget;
class QLabel;
class QLineEdit;
class QListWidget;
class QTabWidget;

namespace pollarix {

class HelpBrowser;

class HelpWindow : public QMainWindow {
    Q_OBJECT
  public:
    explicit HelpWindow(QHelpEngine& engine);

    // All of these bring the window to the front.
    void ShowTopic(const QUrl& address);
    void ShowIndex();
    void ShowSearch();

    // The page that shows.
    QUrl Address() const;

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void BuildToolbar();
    QWidget* BuildContents();
    QWidget* BuildIndex();
    QWidget* BuildSearch();
    void Search();
    QWidget* InputOf(int tab) const; // where one types or chooses in a tab
    void Open(const QUrl& address);
    void ShowPlaceInContents(const QUrl& page);
    void BringToFront();
    void StandAboveDialogs();

    QHelpEngine& engine_;
    HelpSearch search_;
    HelpBrowser* browser_;
    QTabWidget* tabs_;
    QHelpContentWidget* contents_;
    QHelpIndexWidget* index_;
    QLineEdit* txtIndex_ = nullptr;
    QLineEdit* txtSearch_ = nullptr;
    QListWidget* lstFound_ = nullptr;
    QLabel* lblFound_ = nullptr;
};

} // namespace pollarix
