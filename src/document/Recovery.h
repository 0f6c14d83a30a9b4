// The recovery files: what keeps a design that was not saved when the program or the machine goes
// down. They lie in the user's directory, never in the survey, and are whole or not there. Each
// belongs to the running program that writes it; only one whose program is gone can be taken over.
// Asks nobody and opens nothing; that is SurveyDocument's.
#pragma once

#include <QDateTime>
#include <QLockFile>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

#include "document/SurveyScales.h"
#include "document/SurveySnapshot.h"

namespace pollarix {

struct UnsavedSurvey {
    QString path;      // full path of the survey, ".tmp" at its end while it has no name; "" where
                       // no file was open
    QByteArray digest; // of the design in that file when it was opened (DigestOfDesign)
    QDateTime when;    // local time
    SurveySnapshot design;
    SurveyScales scales;

    // What a recovery file holds. FromBytes gives nothing for what is not whole.
    QByteArray ToBytes() const;
    static std::optional<UnsavedSurvey> FromBytes(const QByteArray& bytes);
};

class Recovery {
  public:
    // What lies about is dropped when it is older, or when more than so many are there.
    static constexpr int MostDays = 30;
    static constexpr int MostFiles = 20;

    explicit Recovery(QString directory);
    ~Recovery();
    Recovery(const Recovery&) = delete;
    Recovery& operator=(const Recovery&) = delete;

    // Replaces what this program keeps. Throws PathOrFileAccess; what was kept before then stays.
    void Keep(const UnsavedSurvey& survey);
    // Removes what this program keeps, or leaves it for the next start.
    void Drop();
    void Leave() { own_.reset(); }

    // A file with the lock that makes it ours as long as the value lives.
    struct Slot {
        QString path;
        std::unique_ptr<QLockFile> lock;
    };
    struct Found {
        Slot slot;
        UnsavedSurvey survey;
    };
    // What programs that are gone have left, the newest first. Removes what is too old or too much;
    // what can't be read, or is a running program's, is passed over.
    std::vector<Found> Search() const;
    static void Remove(Found found);
    // The paths of the surveys in all of them, also those of running programs.
    QStringList Paths() const;
    // Goes on with what was found as this program's own.
    void Adopt(Found found);

  private:
    QString directory_;
    std::unique_ptr<Slot> own_;
};

} // namespace pollarix
