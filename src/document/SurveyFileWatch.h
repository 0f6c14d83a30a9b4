// Whether the survey file is still the one that was opened: another program may have put another in
// its place, written over it, or saved another design into it. Only answers, that another window
// adds, leave it the same. Asks nobody; what follows is SurveyDocument's.
#pragma once

#include <QByteArray>
#include <QStringList>

#include <optional>

#include "document/SurveyScales.h"
#include "platform/database/Database.h"
#include "platform/files/Files.h"

namespace pollarix {

class SurveyFileWatch {
  public:
    enum class Found {
        Same,       // also where the name is gone: what is written then fails by itself
        Replaced,   // another file lies under the name; the connection still reads the one opened
        Overwritten // the file that the connection reads has another design, or is no survey
    };

    // Takes the file as it is for the one that was opened. Throws what the database throws.
    void Note(Connection& survey);
    void Forget() { noted_.reset(); }

    // Throws what says that the file is held by another program just now. A file that was touched
    // but has the same design goes on as the same, with all of it read anew.
    Found Look(Connection& survey);

    // Whether the file at the path is known to hold the respondents that were noted, and so may be
    // taken for a later state of the one that was opened. One without respondents never is.
    bool HoldsOurRespondents(const QString& path) const;

    // The design as it was when the file was noted, and the scales as of the last note or look.
    const QByteArray& Digest() const;
    const SurveyScales& Scales() const;
    // Reads the scales again if this program has written since. Failures leave them as they are.
    void RefreshScales(Connection& survey);

  private:
    struct Noted {
        FileState file;
        std::int64_t version = 0;
        std::int64_t changes = 0;
        QByteArray digest;
        SurveyScales scales;
        QStringList respondents; // the first and the last
    };
    void NoteContent(Connection& survey);
    std::optional<Noted> noted_;
};

} // namespace pollarix
