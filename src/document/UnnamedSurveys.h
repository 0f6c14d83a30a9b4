// The files of surveys that have no name yet, in the user's directory: HC, a number, ".tmp". Each
// belongs to the running program that has it open. One that nobody has put anything into, and whose
// program is gone, is removed at a start. What is in them is SurveyDocument's.
#pragma once

#include <QLockFile>
#include <QStringList>

#include <memory>

#include "platform/files/Directories.h"

namespace pollarix {

class UnnamedSurveys {
  public:
    explicit UnnamedSurveys(Directories directories);
    ~UnnamedSurveys();
    UnnamedSurveys(const UnnamedSurveys&) = delete;
    UnnamedSurveys& operator=(const UnnamedSurveys&) = delete;

    // A new one from the template, held. Gives its path. Throws what copying throws.
    QString Make();
    // Holds the file at the path and no other, so that nobody takes it for one that was left. Any
    // other file, or one that another program holds, is not held.
    void HoldOnly(const QString& path);

    // Removes what was left and holds no more than the template does, but for those to keep.
    // Throws nothing: what can't be read or removed stays.
    void RemoveLeft(const QStringList& keep) const;

  private:
    // Whether there is something in it that the template has not.
    bool HoldsWork(const QString& path) const;

    Directories directories_;
    QString held_;
    std::unique_ptr<QLockFile> lock_;
};

} // namespace pollarix
