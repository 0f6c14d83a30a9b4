// What the program asks of the network: a page into a file, and an FTP session for an upload. All
// calls block. Texts for the failures' numbers are the transfer layer's business.
#pragma once

#include <QString>

#include <cstdint>
#include <map>
#include <memory>
#include <set>

#include "platform/network/Transfer.h"

namespace pollarix {

class FtpConnection;

class Internet {
  public:
    explicit Internet(TransferPatience patience = {});
    virtual ~Internet();
    Internet(const Internet&) = delete;
    Internet& operator=(const Internet&) = delete;

    // Stores the body of a page at the path; see DownloadToPath for what goes out and what counts
    // as whole. 0, or the failure's number.
    std::int32_t UrlDownloadToFile(const QString& url, const QString& localPath);

    // Handles are plain numbers, 0 for none. After a call that gave 0 or false, LastError has the
    // failure's number.

    // A session. Virtual so that a test can let it fail, which no server can bring about.
    virtual std::int32_t InternetOpen();
    // Logs in; server is "host" or "host:port", port 21 without one.
    std::int32_t InternetConnect(std::int32_t session, const QString& server, const QString& user,
                                 const QString& password);
    bool FtpSetCurrentDirectory(std::int32_t connection, const QString& directory);
    // Binary, overwriting a file of that name.
    bool FtpPutFile(std::int32_t connection, const QString& localPath, const QString& remoteName);
    // Closing a session closes its connections. Any other number is passed over.
    void InternetCloseHandle(std::int32_t handle);

    std::int32_t LastError() const { return lastError_; }
    // The FTP server's last reply, its lines parted by CR LF, at most 256 characters; "" for none.
    QString LastResponse() const { return lastResponse_; }

  private:
    struct OpenConnection {
        std::int32_t session;
        std::unique_ptr<FtpConnection> ftp;
    };
    FtpConnection* Find(std::int32_t connection);
    // Keeps what a call on the connection ended in; true for success.
    bool Ended(std::int32_t code, const FtpConnection& ftp);

    TransferPatience patience_;
    std::int32_t lastHandle_ = 0;
    std::int32_t lastError_ = 0;
    QString lastResponse_;
    std::map<std::int32_t, OpenConnection> connections_;
    std::set<std::int32_t> sessions_;
};

} // namespace pollarix
