// What lives for the whole run and is handed to every window by reference. Made once, by the main
// procedure; there is no other shared state. Holds no logic.
#pragma once

#include <QString>

#include <functional>
#include <optional>

#include "document/DesignHistory.h"
#include "document/clsSurvey.h"
#include "platform/database/Database.h"
#include "platform/desktop/Dialogs.h"
#include "platform/files/Directories.h"
#include "platform/files/Settings.h"

namespace pollarix {

// Application name of the settings, but for those of the tips, which lie under the executable's.
inline constexpr const char* SettingsApplication = "Quillmark";

struct ApplicationState {
    ApplicationState(pollarix::Directories directories_, Settings& settings_, Dialogs& dialogs_)
        : directories(std::move(directories_)), settings(settings_), dialogs(dialogs_) {}

    const Directories directories;
    Settings& settings;
    Dialogs& dialogs;

    clsSurvey CurrentSurvey;
    DesignHistory History;        // of CurrentSurvey since it was opened
    Connection SurveyConnection;  // open whenever a survey is; SurveyDocument opens and closes it,
                                  // and what is written through it goes through a SurveyBatch
    Connection LibraryConnection; // open on Library.mdb for the whole run, read only

    // Full path; "" when none; ends in ".tmp" while it has no name.
    const QString& CurrentFilename() const { return currentFilename_; }
    // How many surveys were opened until now, for who waits for the user over one of them.
    int Openings() const { return openings_; }
    // The bare flag; SurveyDocument::IsFileChanged is the test to use.
    bool FileChanged() const { return fileChanged_; }

    // Called by every editing action of the design panels, the only way to set the flag. Changes of
    // respondents do not call it: they are written at once.
    void MarkFileChanged() {
        fileChanged_ = true;
        if (onChange_)
            onChange_();
    }
    // For undo that has come back to what the file holds, and nobody else.
    void MarkFileUnchanged() { fileChanged_ = false; }

    // Whether the path leads to the file of the open survey, by whatever name, also when the survey
    // has been renamed meanwhile or could not be opened.
    bool IsOpenSurvey(const QString& path) const { return isOpenSurvey_ && isOpenSurvey_(path); }

  private:
    friend class SurveyBatch;
    friend class SurveyDocument;

    QString currentFilename_;
    bool isNewFile_ = false; // argument of the last opening; stored and never read
    bool fileChanged_ = false;
    int openings_ = 0;
    std::function<void()> onChange_;
    std::function<void(std::optional<WriteBatch>&)> beginBatch_; // leaves none where none may be
    std::function<void(WriteBatch&)> commitBatch_;
    std::function<bool(const QString&)> isOpenSurvey_;
};

} // namespace pollarix
