#include "platform/network/FtpConnection.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>
#include <cctype>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace pollarix {

namespace {

bool HasControls(const QString& text) {
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7F; });
}

// "ftp://host:port/", empty when the text is no server's name.
QByteArray BaseOf(const QString& server) {
    QString host = server.trimmed();
    int port = 21;
    const qsizetype colon = host.lastIndexOf(':');
    // More than one colon without brackets is a bare IPv6 address.
    if (colon > host.lastIndexOf(']') && (host.count(':') == 1 || host.startsWith('['))) {
        bool isNumber = false;
        port = host.mid(colon + 1).toInt(&isNumber);
        if (!isNumber || port < 1 || port > 65535)
            return {};
        host.truncate(colon);
    } else if (host.count(':') > 1 && !host.startsWith('[')) {
        host = '[' + host + ']';
    }
    const QByteArray wireHost = WireHost(host);
    const bool plain = std::all_of(wireHost.begin(), wireHost.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || std::strchr("-._:[]", c);
    });
    if (wireHost.isEmpty() || !plain)
        return {};
    return "ftp://" + wireHost + ':' + QByteArray::number(port) + '/';
}

size_t ReadFile(char* buffer, size_t, size_t count, void* user) {
    const qint64 read = static_cast<QFile*>(user)->read(buffer, static_cast<qint64>(count));
    return read < 0 ? CURL_READFUNC_ABORT : static_cast<size_t>(read);
}

} // namespace

FtpConnection::FtpConnection(const TransferPatience& patience)
    : connections_(curl_multi_init()), curl_(NewCurlHandle("ftp", patience)) {
    CURL* curl = curl_.get();
    if (!curl)
        return;
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, ReceiveReply);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(curl, CURLOPT_OPENSOCKETFUNCTION, OpenSocket);
    curl_easy_setopt(curl, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(curl, CURLOPT_CLOSESOCKETFUNCTION, CloseSocket);
    curl_easy_setopt(curl, CURLOPT_CLOSESOCKETDATA, this);
    // The current directory is the server's to keep: names go out as they are.
    curl_easy_setopt(curl, CURLOPT_FTP_FILEMETHOD, CURLFTPMETHOD_NOCWD);
    // An upload is one session, however long it pauses.
    curl_easy_setopt(curl, CURLOPT_MAXAGE_CONN, 24L * 60 * 60);
    // The data go to the server itself, wherever its reply points.
    curl_easy_setopt(curl, CURLOPT_FTP_SKIP_PASV_IP, 1L);
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, ReadFile);
}

std::int32_t FtpConnection::LogIn(const QString& server, const QString& user,
                                  const QString& password) {
    if (!curl_)
        return internet::OutOfHandles;
    base_ = BaseOf(server);
    if (base_.isEmpty())
        return internet::InvalidUrl;
    // A line break would be a command of its own.
    if (HasControls(user) || HasControls(password))
        return internet::LoginFailed;
    const QString name = user.isEmpty() ? QString("anonymous") : user;
    curl_easy_setopt(curl_.get(), CURLOPT_USERNAME, name.toUtf8().constData());
    curl_easy_setopt(curl_.get(), CURLOPT_PASSWORD, password.toUtf8().constData());
    curl_easy_setopt(curl_.get(), CURLOPT_NOBODY, 1L);
    reply_.ForgetPassword();
    const std::int32_t code = Perform({});
    loggedIn_ = code == 0;
    return code;
}

std::int32_t FtpConnection::SetCurrentDirectory(const QString& directory) {
    if (HasControls(directory))
        return internet::InvalidUrl;
    if (!IsAlive())
        return internet::ConnectionEnded;
    // The star lets libcurl keep the connection when the server refuses.
    curl_slist* command =
        curl_slist_append(nullptr, QString("*CWD " + directory).toUtf8().constData());
    curl_easy_setopt(curl_.get(), CURLOPT_UPLOAD, 0L);
    curl_easy_setopt(curl_.get(), CURLOPT_NOBODY, 1L);
    curl_easy_setopt(curl_.get(), CURLOPT_QUOTE, command);
    const std::int32_t code = Perform({});
    curl_easy_setopt(curl_.get(), CURLOPT_QUOTE, nullptr);
    curl_slist_free_all(command);
    return code == 0 && reply_.Code() >= 400 ? internet::ServersOwnWords : code;
}

std::int32_t FtpConnection::PutFile(const QString& localPath, const QString& remoteName) {
    QFile file(localPath);
    if (!file.open(QIODevice::ReadOnly))
        return QFileInfo::exists(localPath) ? internet::LocalFileAccess
                                            : internet::LocalFileNotFound;
    if (!IsAlive())
        return internet::ConnectionEnded;
    curl_easy_setopt(curl_.get(), CURLOPT_NOBODY, 0L);
    curl_easy_setopt(curl_.get(), CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl_.get(), CURLOPT_READDATA, &file);
    curl_easy_setopt(curl_.get(), CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(file.size()));
    storing_ = true;
    const std::int32_t code = Perform(QUrl::toPercentEncoding(remoteName));
    storing_ = false;
    return code;
}

bool FtpConnection::IsAlive() const {
    // Between two commands a server says nothing, unless that it ends.
    pollfd waiting{control_, POLLIN, 0};
    return control_ != CURL_SOCKET_BAD && poll(&waiting, 1, 0) == 0;
}

std::int32_t FtpConnection::Perform(const QByteArray& path) {
    reply_.Clear();
    curl_easy_setopt(curl_.get(), CURLOPT_URL, (base_ + path).constData());
    const CURLcode result =
        PerformCurl(curl_.get(), connections_.get(), loggedIn_ ? nullptr : &control_);
    if (result == CURLE_OK)
        return 0;
    if (ended_)
        return internet::ConnectionEnded;
    if (result == CURLE_LOGIN_DENIED)
        return reply_.PasswordAsked() && reply_.Code() != 332 ? internet::WrongPassword
                                                              : internet::LoginFailed;
    return reply_.Code() >= 400 ? internet::ServersOwnWords : InternetCode(result);
}

size_t FtpConnection::ReceiveReply(char* data, size_t, size_t count, void* self) {
    static_cast<FtpConnection*>(self)->reply_.AddLine(
        QByteArray(data, static_cast<qsizetype>(count)));
    return count;
}

// libcurl would quietly log in anew when the server has closed the connection, and an upload would
// go to another directory; here its end is a failure.
curl_socket_t FtpConnection::OpenSocket(void* self, curlsocktype, curl_sockaddr* address) {
    auto* connection = static_cast<FtpConnection*>(self);
    connection->ended_ = connection->loggedIn_ && connection->control_ == CURL_SOCKET_BAD;
    return connection->ended_
               ? CURL_SOCKET_BAD
               : socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

int FtpConnection::CloseSocket(void* self, curl_socket_t socket) {
    auto* connection = static_cast<FtpConnection*>(self);
    if (socket == connection->control_) {
        connection->ReadLastWords();
        connection->control_ = CURL_SOCKET_BAD;
    }
    return close(socket);
}

// A server whose disk is full cuts the data off and then says why; libcurl sees the cut and would
// hang up without listening.
void FtpConnection::ReadLastWords() {
    if (!storing_ || reply_.Code() >= 200)
        return;
    constexpr int LastWordsMs = 2000;
    pollfd waiting{control_, POLLIN, 0};
    char words[4096];
    const ssize_t count =
        poll(&waiting, 1, LastWordsMs) > 0 ? recv(control_, words, sizeof words, MSG_DONTWAIT) : 0;
    for (const QByteArray& line : QByteArray(words, std::max<ssize_t>(count, 0)).split('\n'))
        reply_.AddLine(line + '\n');
}

} // namespace pollarix
