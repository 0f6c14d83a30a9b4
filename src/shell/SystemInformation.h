// Starts the system's own program that tells about the machine, where its registry names one. Knows
// nothing about the machine itself.
#pragma once

#include <QString>

#include <functional>
#include <optional>

namespace pollarix {

class Dialogs;

// Reads the text of a value below a key of the local machine; none when it isn't there.
using RegistryLookup =
    std::function<std::optional<QString>(const QString& key, const QString& value)>;

// There is no registry on this system, so nothing is ever found.
std::optional<QString> GetKeyValue(const QString& key, const QString& value);

// Runs the program that the registry names, or says that there is none. Any failure on the way ends
// in the same message.
void StartSysInfo(Dialogs& dialogs, const RegistryLookup& lookup = GetKeyValue);

} // namespace pollarix
