// What comes from a survey server besides results: replies with a value, an id, a list or a
// document, the lines of an FTP server, and the list of servers in the settings, which holds names
// and addresses as they were given. The first byte chooses among them.
#include <QFile>
#include <QStringList>

#include <algorithm>

#include "FuzzProgram.h"
#include "platform/controls/ComboBox.h"
#include "platform/network/FtpReply.h"
#include "web/ServerList.h"
#include "web/modWebServer.h"

using namespace pollarix;

namespace {

void RequireKnown(int number) {
    fuzz::Require(number == 0 || number == failure::InvalidArgument ||
                      number == failure::Overflow || number == failure::TypeMismatch,
                  "only known failures");
}

void ReadReply(QByteArrayView body) {
    static Internet internet;
    static wininet net(internet);
    modWebServer server(net, Directories{fuzz::Directory(), fuzz::Directory()});
    fuzz::WriteFile(fuzz::Path("result.htm"), body);
    QString value;
    bool accepted = false;
    RequireKnown(fuzz::NumberOf([&] {
        accepted = server.ServerGetValue(value);
        fuzz::Require(accepted || server.LastServerError.size() == body.size(),
                      "a refused reply is the error");
    }));
    if (accepted) {
        fuzz::Require(value.size() <= body.size() && !value.contains("<br>"),
                      "a value ends at the mark");
        RequireKnown(fuzz::NumberOf([&] { (void)ToNumber16(value); }));
        // The list of surveys, as its page takes it.
        for (const QString& id : value.split(','))
            RequireKnown(fuzz::NumberOf([&] { (void)Narrow16(ToNumber32(id)); }));
    }
    const QString document = fuzz::Path("document.txt");
    const bool taken = server.ServerGetDocument(document);
    fuzz::Require(taken != (body.isEmpty() || server.LastServerError.startsWith("Failure")),
                  "a failure is one");
    fuzz::Require(!taken || QFile(document).size() == body.size(), "a document is the whole reply");
}

void ReadFtpLines(QByteArrayView bytes) {
    FtpReply reply;
    for (const QByteArray& line : bytes.toByteArray().split('\n'))
        reply.AddLine(line + '\n');
    fuzz::Require(reply.Code() == 0 || (reply.Code() >= 100 && reply.Code() <= 599),
                  "a code is one of FTP");
    fuzz::Require(reply.Text().isEmpty() == (reply.Code() == 0), "a code comes with its words");
    fuzz::Require(reply.Shown().size() <= 256, "what is shown is short");
}

void ReadServerList(QByteArrayView bytes) {
    fuzz::WriteFile(fuzz::SettingsDirectory() + '/' + SettingsApplication + ".ini", bytes);
    const Settings settings(fuzz::SettingsDirectory());
    for (const ListedServer& server : ListServers(settings)) {
        std::int32_t index = 0;
        const int number = fuzz::NumberOf([&] { index = server.Index(); });
        RequireKnown(number);
        if (number != 0)
            continue;
        const auto entry = GetServerEntry(index, settings);
        fuzz::Require(!entry || entry->url.size() < 2 || entry->url.endsWith('/'),
                      "an address ends in a slash");
    }
    ComboBox box;
    RequireKnown(fuzz::NumberOf([&] { RefreshServerList(box, settings); }));
    fuzz::Require(box.ListCount() >= 1, "the built-in server is listed");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::Program program; // makes the directories
    if (size == 0)
        return 0;
    const QByteArrayView rest(data + 1, static_cast<qsizetype>(size - 1));
    switch (data[0]) {
    case 'f':
        ReadFtpLines(rest);
        break;
    case 'l':
        ReadServerList(rest);
        break;
    default:
        ReadReply(rest);
    }
    return 0;
}
