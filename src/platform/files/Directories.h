// The two directories the program works in. Neither ends in a separator.
#pragma once

#include <QString>

namespace pollarix {

struct Directories {
    // Read only: blank.mdb, Library.mdb, tips, help, pictures, samples.
    QString program;
    // Writable, of this user alone: temporary surveys, the survey document, replies, results.
    QString user;

    QString InProgram(const QString& name) const { return program + '/' + name; }
    QString InUser(const QString& name) const { return user + '/' + name; }

    // Beside the executable when the data lies there (a build tree), else share/pollarix next to
    // its bin directory; and the user's local data directory, made if missing. Throws
    // PathOrFileAccess when it can't be made.
    static Directories OfThisProgram();
};

// Makes a directory that nobody but its owner may look into, with whatever lies above it; one that
// is there already is left as it is. Throws PathOrFileAccess.
void MakeOwnersDirectory(const QString& path);

} // namespace pollarix
