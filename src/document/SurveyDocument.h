// Opening, saving and closing the survey: who owns its path, its connection and its changed mark.
// Reading and writing its tables are SurveyReader's and SurveyWriter's; respondents and answers,
// which other rooms write at once, are none of it.
#pragma once

#include <QSet>

#include <functional>
#include <optional>

#include "document/ApplicationState.h"
#include "document/RecoveryWriter.h"
#include "document/SurveyFileWatch.h"
#include "document/SurveySnapshot.h"
#include "document/SurveyViews.h"
#include "document/UnnamedSurveys.h"
#include "platform/files/Files.h"

namespace pollarix {

class SurveyDocument {
  public:
    // The only format there is. Other versions get a warning and are loaded as far as they go.
    static constexpr double FormatVersion = 1.7;

    // The interval is that of the recovery file; tests don't wait so long.
    SurveyDocument(ApplicationState& state, SurveyViews& views,
                   int recoveryMs = RecoveryWriter::IntervalMs);
    ~SurveyDocument();
    SurveyDocument(const SurveyDocument&) = delete;
    SurveyDocument& operator=(const SurveyDocument&) = delete;

    // Set by the window: shows the path in the status bar, and, after each opening, what else shows
    // something of the file. A failure of the latter is told as one of the opening.
    std::function<void(const QString& text)> ShowPath = [](const QString&) {};
    std::function<void()> Opened = [] {};

    // Attaches the program to the file and rebuilds model and tree from it. The survey that was
    // open must have been closed. SelectIndex is the question (1-based, in file order) to select at
    // the end; a number that matches none selects the last. Throws nothing: a failure is shown in
    // one message and leaves everything as far as it got. What was not read whole is never written.
    void DoOpen(const QString& sFilename, bool bIsNew, int SelectIndex);

    // Writes the model into the open file, whole or not at all, then closes and reopens it. False
    // when nothing was written, after a message. Throws what the database throws; file, model and
    // changed mark are then as they were.
    bool DoSave();

    // Empties the tree and detaches the file. The model keeps its questions until the next opening.
    void DoClose();

    // Both are true when the survey is saved. A Save As that is cancelled ends silently; one that
    // fails has shown a message, and everything is as it was. Save throws what DoSave throws.
    bool mnuFileSave_Click();
    bool mnuFileSaveAs_Click();

    // The test for unsaved changes. A survey of one question whose editor is empty is never
    // changed, whatever the flag says: that is the untouched new survey.
    bool IsFileChanged() const;

    // The question before a survey is left: saves if the user says so. False when what was asked
    // for must not go on: the user cancels the question, or wants it saved and it is not. Throws
    // what DoSave throws. `caseOfTmp` tells how the name's end is compared with ".tmp".
    bool AskToSave(Qt::CaseSensitivity caseOfTmp);

    // A new survey file from the template, in the user's directory. Gives its path. Throws what
    // copying throws.
    QString NewSurveyFile() { return unnamed_.Make(); }

    // Asks whether to restore what a program that went down has left unsaved: of the survey that
    // was opened at the path, or, for "", of any. True when it was restored: it is open then, and
    // marked as changed. Throws when that can't be done; what was found then stays for later.
    bool OfferRecovery(const QString& path);

    // Removes the unnamed surveys that programs which are gone have left with nothing in them.
    // Throws nothing.
    void RemoveLeftSurveys() const;

    // The program ends. An unnamed survey without changes or answers is deleted.
    void End();

  private:
    enum class FileCheck { Same, SavedAs, Stop };

    void ReadAndShow(int SelectIndex);
    // `noText` stands in the tree where a question has none.
    void Show(const SurveySnapshot& design, int SelectIndex, const QString& noText = {});
    void Detach(); // DoClose, with nothing unsaved
    // What is in the model, without the questions of a survey that was closed.
    SurveySnapshot Design() const;
    // The position of the question that is selected, -1 for none.
    int SelectedPosition() const;
    // Tells, and is true, when the survey was opened but not read whole.
    bool RefusesPart();
    // Asks when the file is no longer the one that was opened.
    FileCheck CheckFile();
    // The same, and begins a batch in the file that is the Same, which it stays until the end.
    FileCheck Begin(std::optional<WriteBatch>& batch);
    // Writes the survey to a file that takes the name only when it is whole. False when its answers
    // could not be taken along.
    bool WriteCopy(const QString& path);
    bool FillCopy(Connection& copy);
    QString WithSuffix(const QString& path);
    bool IsUnnamed() const;
    bool HoldsUnnamedAnswers();
    std::optional<UnsavedSurvey> Unsaved();
    void SettleRecovery();
    void Restore(Recovery::Found found);
    // Opens what the design that was not saved belongs to, and says why that is a new survey.
    QString OpenFor(const UnsavedSurvey& survey);

    ApplicationState& state_;
    SurveyViews& views_;
    bool isWhole_ = false;            // all of the open file's design is in the model
    std::optional<FileState> opened_; // the file that the connection is open on
    SurveyFileWatch watch_;
    QSet<QString> closed_; // keys that the model keeps of the survey that was closed
    UnnamedSurveys unnamed_;
    RecoveryWriter recovery_;
};

// A survey without a name of its own: the path ends in ".tmp".
bool EndsInTmp(const QString& path, Qt::CaseSensitivity sensitivity);

} // namespace pollarix
