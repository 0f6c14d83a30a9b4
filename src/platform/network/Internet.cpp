#include "platform/network/Internet.h"

#include "platform/network/FtpConnection.h"
#include "platform/network/WebDownload.h"

namespace pollarix {

std::int32_t Internet::UrlDownloadToFile(const QString& url, const QString& localPath) {
    return DownloadToPath(url, localPath, patience_);
}

std::optional<InternetSession> Internet::InternetOpen() {
    return InternetSession{patience_};
}

std::unique_ptr<FtpConnection> Internet::InternetConnect(const InternetSession& session,
                                                         const QString& server, const QString& user,
                                                         const QString& password) {
    auto connection = std::make_unique<FtpConnection>(session.patience);
    const std::int32_t code = connection->LogIn(server, user, password);
    return Ended(code, *connection) ? std::move(connection) : nullptr;
}

bool Internet::FtpSetCurrentDirectory(FtpConnection& connection, const QString& directory) {
    return Ended(connection.SetCurrentDirectory(directory), connection);
}

bool Internet::FtpPutFile(FtpConnection& connection, const QString& localPath,
                          const QString& remoteName) {
    return Ended(connection.PutFile(localPath, remoteName), connection);
}

bool Internet::Ended(std::int32_t code, const FtpConnection& connection) {
    lastError_ = code;
    lastResponse_ = connection.LastReply().Shown();
    return code == 0;
}

} // namespace pollarix
