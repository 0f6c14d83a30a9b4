// One client of the receiver, from its greeting to its end.
#pragma once

#include <optional>
#include <string>

#include "server/ftp/FtpReceiver.h"
#include "server/ftp/Sockets.h"

namespace pollarix::server {

class FtpSession {
  public:
    // wake: can be read once the server stops.
    FtpSession(const FtpBounds& bounds, const UploadTaker& taker, Socket control, int wake);

    // Comes back when the client has gone, was silent for too long, or was sent away.
    void Run();

  private:
    // Nothing when there is no whole line any more. Without its end.
    std::optional<std::string> NextLine();
    bool Reply(const std::string& line);
    // False when the session is over.
    bool Do(const std::string& command, const std::string& argument);
    bool ChangeDirectory(const std::string& directory);
    bool Listen(bool isExtended);
    bool Store(const std::string& name);
    // Nothing when the data did not come whole or were too large, with the reply for that.
    std::optional<std::string> ReceiveData(std::string& refusal);
    Moment Soon() const;

    const FtpBounds& bounds_;
    const UploadTaker& taker_;
    Socket control_;
    const int wake_;
    const Moment end_;
    const std::string peer_;
    std::string read_; // of the control connection, and not yet looked at
    Socket data_;      // listens
    bool hasName_ = false;
    bool isLoggedIn_ = false;
    bool isInIncoming_ = false;
};

} // namespace pollarix::server
