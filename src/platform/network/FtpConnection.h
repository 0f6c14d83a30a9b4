// One logged-in FTP connection for uploads: passive, binary, plain. Nothing is listed, fetched or
// deleted through it.
#pragma once

#include <QByteArray>
#include <QString>

#include "platform/network/Curl.h"
#include "platform/network/FtpReply.h"

namespace pollarix {

class FtpConnection {
  public:
    explicit FtpConnection(const TransferPatience& patience);
    FtpConnection(const FtpConnection&) = delete;
    FtpConnection& operator=(const FtpConnection&) = delete;

    // Each gives 0 or the failure's number. An operation after the connection has ended gives
    // ConnectionEnded and does not log in again.

    // server: "host", "host:port" or "[address]:port", port 21 without one. An empty user logs in
    // as anonymous.
    std::int32_t LogIn(const QString& server, const QString& user, const QString& password);
    // From the current directory, which is the login's at first.
    std::int32_t SetCurrentDirectory(const QString& directory);
    // Into the current directory; a file of that name is overwritten.
    std::int32_t PutFile(const QString& localPath, const QString& remoteName);

    const FtpReply& LastReply() const { return reply_; }

  private:
    static size_t ReceiveReply(char* data, size_t, size_t count, void* self);
    static curl_socket_t OpenSocket(void* self, curlsocktype purpose, curl_sockaddr* address);
    static int CloseSocket(void* self, curl_socket_t socket);
    void ReadLastWords();
    bool IsAlive() const;
    std::int32_t Perform(const QByteArray& path);

    QByteArray base_; // "ftp://host:port/"
    FtpReply reply_;
    bool storing_ = false;
    curl_socket_t control_ = CURL_SOCKET_BAD;
    bool loggedIn_ = false;
    bool ended_ = false; // and would have been begun anew
    CurlMulti connections_;
    CurlHandle curl_; // goes first, while its callbacks still have the rest
};

} // namespace pollarix
