// The program's door to the network: a page into a file, the one upload session with its two
// handles, and the texts for what can go wrong. What a server says is not looked at here.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/network/Internet.h"

namespace pollarix {

class wininet {
  public:
    explicit wininet(Internet& internet);
    ~wininet();

    // Both are empty after an orderly close; an upload that failed leaves them open.
    std::optional<InternetSession> InternetHandle;
    std::unique_ptr<FtpConnection> FtpHandle;

    // Fetches the URL into the file; false for a failure of any kind, and then a file that was
    // there stays as it was. Unless noCacheBuster, "&refreshme=" and the local date and time go out
    // behind the URL, so that no cache on the way answers.
    bool DownloadToFile(const QString& url, const QString& localPath, bool noCacheBuster) const;

    // The steps of one upload, in this order, each after one that gave true. After one that gives
    // false, LastError has its code.
    bool Open();
    // ftpServer is "host" or "host:port".
    bool Connect(const QString& ftpServer, const QString& user, const QString& password);
    bool SetCurrentDirectory(const QString& directory);
    bool PutFile(const QString& localPath, const QString& remoteName);
    void Close();

    std::int32_t LastError() const { return internet_.LastError(); }

    // The text for an error code; for 12003 the FTP server's own last words.
    QString FtpErrorText(std::int32_t code) const;

  private:
    Internet& internet_;
};

} // namespace pollarix
