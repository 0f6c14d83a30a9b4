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
        Same,        // also where the name is gone: what is written then fails by itself
        Replaced,    // another file lies under the name; the connection still reads the one opened
        Overwritten, // the file that the connection reads has another design, or is no survey
        Unknown      // nothing was noted, so that nothing can be told
    };

    // Takes the file as it is for the one that was opened. Throws what the database throws, and
    // FileNotFound; nothing is noted then.
    void Note(Connection& survey);
    void Forget() { noted_.reset(); }

    // Throws what says that the file is held by another program just now. A file that was touched
    // but has the same design goes on as the same, with all of it read anew.
    Found Look(Connection& survey);
    // Whether nobody has touched the file since the last note, look or own commit. Reads no more
    // than that takes, to be asked again within a batch, when nobody else can write any more.
    bool IsUntouched(Connection& survey) const;
    // Commits this program's own batch and notes the file as it is then. Throws what the commit
    // throws; what was noted before then stays.
    void Commit(Connection& survey, WriteBatch& batch);

    // Whose answers a file holds that may be a later state of the one that was opened.
    enum class Answers {
        Ours,
        None,   // neither does it hold any, nor were there any
        Unknown // others', or of nobody that was noted
    };
    Answers AnswersIn(const QString& path) const;

    // The design as it was when the file was noted, "" for none, and the scales as of the last
    // note, look or own commit.
    QByteArray Digest() const { return noted_ ? noted_->digest : QByteArray(); }
    SurveyScales Scales() const { return noted_ ? noted_->content.scales : SurveyScales(); }

  private:
    struct Content {
        SurveyScales scales;
        QStringList respondents; // the first and the last
    };
    struct Noted {
        FileState file;
        std::int64_t version = 0;
        QByteArray digest;
        Content content;
    };
    static Content Read(Connection& survey, Content before);

    std::optional<Noted> noted_;
};

} // namespace pollarix
