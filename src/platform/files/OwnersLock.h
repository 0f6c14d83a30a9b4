// Who a file belongs to, of the programs that run: a lock beside it, which ends with its program
// also when that goes down. Nobody who does not ask for it is kept out.
#pragma once

#include <QLockFile>
#include <QString>

#include <memory>

namespace pollarix {

// Held as long as the value lives. None while another one, of this program or of another that
// runs, holds it, and where the directory takes no file.
std::unique_ptr<QLockFile> LockBeside(const QString& path);

// Removes the locks that programs have left beside what is gone by now. `pattern` is that of the
// files' names.
void DropLocksOfNothing(const QString& directory, const QString& pattern);

} // namespace pollarix
