// What the program asks of the network: a page into a file, and an FTP session for an upload. All
// calls block. Texts for the failures' numbers are the transfer layer's business.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/network/Transfer.h"

namespace pollarix {

class FtpConnection;

// What connections are made in.
struct InternetSession {
    TransferPatience patience;
};

class Internet {
  public:
    explicit Internet(TransferPatience patience = {}) : patience_(patience) {}
    virtual ~Internet() = default;
    Internet(const Internet&) = delete;
    Internet& operator=(const Internet&) = delete;

    // Stores the body of a page at the path; see DownloadToPath for what goes out and what counts
    // as whole. 0, or the failure's number.
    std::int32_t UrlDownloadToFile(const QString& url, const QString& localPath);

    // After a call that gave nothing or false, LastError has the failure's number.

    // Virtual so that a test can let it fail, which no server can bring about.
    virtual std::optional<InternetSession> InternetOpen();
    // Logs in; server is "host" or "host:port", port 21 without one. The connection closes when it
    // is let go.
    std::unique_ptr<FtpConnection> InternetConnect(const InternetSession& session,
                                                   const QString& server, const QString& user,
                                                   const QString& password);
    bool FtpSetCurrentDirectory(FtpConnection& connection, const QString& directory);
    // Binary, overwriting a file of that name.
    bool FtpPutFile(FtpConnection& connection, const QString& localPath, const QString& remoteName);

    std::int32_t LastError() const { return lastError_; }
    // The FTP server's last reply, its lines parted by CR LF, at most 256 characters; "" for none.
    QString LastResponse() const { return lastResponse_; }

  private:
    // Keeps what a call on the connection ended in; true for success.
    bool Ended(std::int32_t code, const FtpConnection& connection);

    TransferPatience patience_;
    std::int32_t lastError_ = 0;
    QString lastResponse_;
};

} // namespace pollarix
