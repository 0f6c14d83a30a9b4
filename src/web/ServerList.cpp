#include "web/ServerList.h"

#include "document/ApplicationState.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

constexpr auto Section = "ServerList";

ServerEntry BuiltInEntry() {
    // The server of this machine, unless the build names another one.
    return {"Kelvane", POLLARIX_SERVER_URL, POLLARIX_FTP_SERVER, "anonymous@pollarix.example",
            "survey@pollarix.example"};
}

} // namespace

std::optional<ServerEntry> GetServerEntry(std::int32_t index, const Settings& settings) {
    if (index == BuiltInServer)
        return BuiltInEntry();
    const auto field = [&](const QString& name) {
        return settings.GetSetting(SettingsApplication, Section, name + QString::number(index), "");
    };
    ServerEntry entry{field("ServerName"), field("ServerURL"), field("FTPServer"),
                      field("FTPUsername"), field("FTPPassword")};
    if (entry.url.size() > 1 && !entry.url.endsWith('/'))
        entry.url += '/';
    if (entry.name.isEmpty())
        return std::nullopt;
    return entry;
}

std::int32_t ListedServer::Index() const {
    return ToNumber32(number);
}

std::vector<ListedServer> ListServers(const Settings& settings) {
    std::vector<ListedServer> servers = {{"Kelvane Server", QString::number(BuiltInServer)}};
    constexpr QLatin1String nameKey("ServerName");
    for (const auto& [key, value] : settings.GetAllSettings(SettingsApplication, Section))
        if (key.startsWith(nameKey))
            servers.push_back({value, key.mid(nameKey.size())});
    return servers;
}

void RefreshServerList(ComboBox& cboName, const Settings& settings) {
    cboName.Clear();
    for (const ListedServer& server : ListServers(settings)) {
        cboName.AddItem(server.name);
        cboName.SetItemData(cboName.NewIndex(), server.Index());
    }
    cboName.SetListIndex(cboName.ListCount() - 1);
}

void AddServer(const ServerEntry& entry, Settings& settings) {
    const QString total = settings.GetSetting(SettingsApplication, "Config", "TotalServers", "0");
    const QString n = QString::number(Narrow32(std::int64_t(ToNumber32(total)) + 1));
    settings.SaveSetting(SettingsApplication, "Config", "TotalServers", n);
    settings.SaveSetting(SettingsApplication, Section, "ServerName" + n, entry.name);
    settings.SaveSetting(SettingsApplication, Section, "ServerURL" + n, entry.url);
    settings.SaveSetting(SettingsApplication, Section, "FTPServer" + n, entry.ftpServer);
    settings.SaveSetting(SettingsApplication, Section, "FTPUsername" + n, entry.ftpUser);
    settings.SaveSetting(SettingsApplication, Section, "FTPPassword" + n, entry.ftpPassword);
}

} // namespace pollarix
