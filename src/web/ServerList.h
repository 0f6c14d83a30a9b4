// The survey servers the user knows: the built-in one and those in the settings. Entries are added,
// never changed or removed; their passwords lie there in plain text.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/controls/ComboBox.h"
#include "platform/files/Settings.h"

namespace pollarix {

// Index of the built-in entry.
inline constexpr std::int32_t BuiltInServer = -1;

// What is said when GetServerEntry gives none.
inline constexpr const char* NoServerEntry = "Error - unable to retrieve server information.";

struct ServerEntry {
    QString name;
    QString url; // web root
    QString ftpServer;
    QString ftpUser;
    QString ftpPassword;
};

// The entry of that index, none when it has no name. A URL of more than one character gets the
// closing "/" that it lacks, here and not in the store.
std::optional<ServerEntry> GetServerEntry(std::int32_t index, const Settings& settings);

// A line of the list of servers.
struct ListedServer {
    QString name;
    QString number; // as the key has it

    // Throws TypeMismatch for a key with no number behind it, Overflow for one of over 32 bits.
    std::int32_t Index() const;
};

// The built-in entry, then those of the settings by their numbers.
std::vector<ListedServer> ListServers(const Settings& settings);

// Fills the box anew, each entry's index as its item data, and selects the last one. Throws as
// Index does, with the entries up to that one listed and nothing selected.
void RefreshServerList(ComboBox& cboName, const Settings& settings);

// Stores the entry under the next number. Throws as ToNumber32 does when the count of servers in
// the settings is none, and PathOrFileAccess when they can't be written.
void AddServer(const ServerEntry& entry, Settings& settings);

} // namespace pollarix
