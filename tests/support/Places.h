// Where the tests find their files: what the build made beside the program, and the tree itself.
// The paths are compiled into one object only, so that every other one is the same in each
// checkout.
#pragma once

#include <QString>

namespace pollarix::test {

// The directory of blank.mdb, the library, the help, the tips and the samples.
QString DataDirectory();

// Full path of one of them.
inline QString DataFile(const QString& name) {
    return DataDirectory() + '/' + name;
}

// Full path of a file of the tree, given from its top.
QString SourceFile(const QString& name);

} // namespace pollarix::test
