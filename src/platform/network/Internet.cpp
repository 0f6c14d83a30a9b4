#include "platform/network/Internet.h"

#include <utility>

#include "platform/network/FtpConnection.h"
#include "platform/network/WebDownload.h"

namespace pollarix {

Internet::Internet(TransferPatience patience) : patience_(patience) {}

Internet::~Internet() = default;

std::int32_t Internet::UrlDownloadToFile(const QString& url, const QString& localPath) {
    return DownloadToPath(url, localPath, patience_);
}

std::int32_t Internet::InternetOpen() {
    sessions_.insert(++lastHandle_);
    return lastHandle_;
}

std::int32_t Internet::InternetConnect(std::int32_t session, const QString& server,
                                       const QString& user, const QString& password) {
    if (!sessions_.contains(session)) {
        lastError_ = internet::WrongHandle;
        return 0;
    }
    auto ftp = std::make_unique<FtpConnection>(patience_);
    const std::int32_t code = ftp->LogIn(server, user, password);
    if (!Ended(code, *ftp))
        return 0;
    connections_.emplace(++lastHandle_, OpenConnection{session, std::move(ftp)});
    return lastHandle_;
}

bool Internet::FtpSetCurrentDirectory(std::int32_t connection, const QString& directory) {
    FtpConnection* ftp = Find(connection);
    return ftp && Ended(ftp->SetCurrentDirectory(directory), *ftp);
}

bool Internet::FtpPutFile(std::int32_t connection, const QString& localPath,
                          const QString& remoteName) {
    FtpConnection* ftp = Find(connection);
    return ftp && Ended(ftp->PutFile(localPath, remoteName), *ftp);
}

void Internet::InternetCloseHandle(std::int32_t handle) {
    if (sessions_.erase(handle) > 0)
        std::erase_if(connections_,
                      [handle](const auto& open) { return open.second.session == handle; });
    else
        connections_.erase(handle);
}

FtpConnection* Internet::Find(std::int32_t connection) {
    const auto found = connections_.find(connection);
    if (found == connections_.end()) {
        lastError_ = internet::WrongHandle;
        return nullptr;
    }
    return found->second.ftp.get();
}

bool Internet::Ended(std::int32_t code, const FtpConnection& ftp) {
    lastError_ = code;
    lastResponse_ = ftp.LastReply().Shown();
    return code == 0;
}

} // namespace pollarix
