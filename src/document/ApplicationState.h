// What lives for the whole run and is handed to every window by reference. Made once, by the main
// procedure; there is no other shared state. Holds no logic.
#pragma once

#include <QString>

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
    Connection SurveyConnection;  // open whenever a survey is
    Connection LibraryConnection; // open on Library.mdb for the whole run, read only
    QString CurrentFilename;      // full path; "" when none; ends in ".tmp" while it has no name
    bool IsNewFile = false;       // argument of the last opening; stored and never read
    bool FileChanged = false;     // the bare flag; SurveyDocument::IsFileChanged is the test to use

    // Called by every editing action of the design panels. Changes of respondents do not call it:
    // they are written at once.
    void MarkFileChanged() { FileChanged = true; }
    // For undo that has come back to what the file holds, and nobody else.
    void MarkFileUnchanged() { FileChanged = false; }
};

} // namespace pollarix
