// Opening, saving and closing the survey file: the one reader and the one writer of the tables
// question and response. Not for respondents and answers, which other rooms write at once.
#pragma once

#include <memory>
#include <vector>

#include "document/ApplicationState.h"
#include "document/SurveyViews.h"
#include "platform/files/Files.h"

namespace pollarix {

class SurveyDocument {
  public:
    // The only format there is. Other versions get a warning and are loaded as far as they go.
    static constexpr double FormatVersion = 1.7;

    SurveyDocument(ApplicationState& state, SurveyViews& views) : state_(state), views_(views) {}

    // Attaches the program to the file and rebuilds model and tree from it. The survey that was
    // open must have been closed. SelectIndex is the question (1-based, in file order) to select at
    // the end; a number that matches none selects nothing. Throws nothing: a failure is shown in
    // one message and leaves everything as far as it got.
    void DoOpen(const QString& sFilename, bool bIsNew, int SelectIndex);

    // Writes the model into the open file, then closes and reopens it. The rows are written in one
    // WriteBatch. Throws what the database throws; the survey then stays open as it was.
    void DoSave();

    // Empties the tree and detaches the file. The model keeps its questions until the next opening.
    void DoClose();

    // A Save As that is cancelled or fails at the copy ends without a failure; the latter has shown
    // a message. They throw what DoSave throws, and what opening the old file again throws.
    void mnuFileSave_Click();
    void mnuFileSaveAs_Click();

    // The test for unsaved changes. A survey of one question whose editor is empty is never
    // changed, whatever the flag says: that is the untouched new survey.
    bool IsFileChanged() const;

    // The question before a survey is left: saves if the user says so. False only when the user
    // cancels the question. A Save As that was cancelled, or that showed its message, does not stop
    // what was asked for: required behaviour. Throws what DoSave throws. `caseOfTmp` tells how the
    // name's end is compared with ".tmp".
    bool AskToSave(Qt::CaseSensitivity caseOfTmp);

  private:
    void ReadQuestions(int SelectIndex, QString& selectKey);
    void ReadResponses();
    // The position of the question that is selected, -1 for none.
    int SelectedPosition() const;
    // Writes the model into the file that the connection is open on.
    void WriteModel();
    void Reopen(int SelectIndex);
    bool HasRow(const clsQ& q) const;
    void WriteQuestions(std::vector<std::shared_ptr<clsQ>>& inserted);
    void WriteResponses();
    PendingCopy CopyTo(const QString& path);
    void ReopenAfterFailedSaveAs(const QString& old);

    ApplicationState& state_;
    SurveyViews& views_;
};

// A survey without a name of its own: the path ends in ".tmp".
bool EndsInTmp(const QString& path, Qt::CaseSensitivity sensitivity);

} // namespace pollarix
