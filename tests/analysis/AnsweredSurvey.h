// A survey file of every kind of question with a few respondents, in a directory of its own, and
// what a command needs around it. Answers are added with plain SQL.
#pragma once

#include <QTemporaryDir>

#include "analysis/LongWork.h"
#include "document/ApplicationState.h"
#include "support/QueuedDialogs.h"

namespace pollarix::test {

// Keeps what was shown, and runs what a user might do meanwhile.
class RecordedProgress : public ProgressDisplay {
  public:
    void ShowProgress(const QString& text) override {
        shown << text;
        if (meanwhile)
            meanwhile();
    }
    void ClearProgress() override { ++cleared; }

    QStringList shown;
    int cleared = 0;
    std::function<void()> meanwhile;
};

class AnsweredSurvey {
  public:
    AnsweredSurvey();

    QString Path(const QString& name) const { return directory_.filePath(name); }
    Connection& Survey() { return state.SurveyConnection; }
    // Runs statements joined with ";".
    void Sql(const char* statements);
    void AddRespondents(int count, const QString& answer);

    static QByteArray Read(const QString& path);
    // The answer queued for the next file dialog.
    void Choose(const QString& path, int filterIndex = 0) {
        dialogs.fileNames.push_back({path, filterIndex});
    }

  private:
    QTemporaryDir directory_;
    Settings settings_;

  public:
    QueuedDialogs dialogs;
    RecordedProgress progress;
    LongWork work{progress};
    ApplicationState state;
};

} // namespace pollarix::test
