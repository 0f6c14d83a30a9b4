#include "document/UnnamedSurveys.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

#include "document/SurveyScales.h"
#include "platform/base/Failure.h"
#include "platform/database/Database.h"
#include "platform/files/Files.h"
#include "platform/files/OwnersLock.h"

namespace pollarix {

namespace {

constexpr const char* Prefix = "HC";
constexpr const char* Pattern = "HC*.tmp";

} // namespace

UnnamedSurveys::UnnamedSurveys(Directories directories) : directories_(std::move(directories)) {}

UnnamedSurveys::~UnnamedSurveys() = default;

QString UnnamedSurveys::Make() {
    QString path = NewTempFileName(directories_.user, Prefix);
    // Before it is filled: a program that starts just now may remove it while it is empty, and then
    // it comes back.
    HoldOnly(path);
    try {
        CopyFileOver(directories_.InProgram("blank.mdb"), path);
    } catch (const Failure&) {
        QFile::remove(path);
        throw;
    }
    return path;
}

void UnnamedSurveys::HoldOnly(const QString& path) {
    if (path == held_)
        return;
    lock_.reset();
    held_.clear();
    const QFileInfo file(path);
    if (!QDir::match(Pattern, file.fileName()) || file.dir() != QDir(directories_.user))
        return;
    lock_ = LockBeside(path);
    if (lock_)
        held_ = path;
}

bool UnnamedSurveys::HoldsWork(const QString& path) const {
    if (QFileInfo(path).size() == 0)
        return false; // its program went down before it had filled it
    Connection file, blank;
    file.Open(path);
    blank.Open(directories_.InProgram("blank.mdb"), Connection::Mode::ReadOnly);
    for (const char* anyRow :
         {"SELECT 1 FROM question LIMIT 1", "SELECT 1 FROM response LIMIT 1",
          "SELECT 1 FROM respondent LIMIT 1", "SELECT 1 FROM respondent_responses LIMIT 1"})
        if (!file.Execute(anyRow).AtEnd())
            return true;
    return ReadScales(file) != ReadScales(blank);
}

void UnnamedSurveys::RemoveLeft(const QStringList& keep) const {
    QStringList kept; // names, which say enough, however the paths are written
    for (const QString& path : keep)
        kept << QFileInfo(path).fileName();
    const QDir directory(directories_.user);
    for (const QString& name : directory.entryList({Pattern}, QDir::Files)) {
        if (kept.contains(name))
            continue;
        const QString path = directory.filePath(name);
        try {
            const auto lock = LockBeside(path);
            if (lock && !HoldsWork(path))
                QFile::remove(path);
        } catch (const Failure&) {
            // What can't be read is not known to hold nothing.
        }
    }
    DropLocksOfNothing(directories_.user, Pattern);
}

} // namespace pollarix
