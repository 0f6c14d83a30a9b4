// A client that sends bytes as they are, and reads what comes back.
#pragma once

#include <string>
#include <string_view>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/Loopback.h"

namespace pollarix::test {

class RawSocket {
  public:
    explicit RawSocket(int port) : socket_(ConnectToLoopback(port)) {}
    ~RawSocket() { close(socket_); }
    RawSocket(const RawSocket&) = delete;
    RawSocket& operator=(const RawSocket&) = delete;

    // False when the other end has gone.
    bool Send(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0)
                return false;
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }
    // Until the end of the connection, or until the text has come, and at most so long.
    std::string Receive(std::string_view until = {}, int milliseconds = 20000) {
        while (until.empty() || received_.find(until) == std::string::npos) {
            pollfd waiting{socket_, POLLIN, 0};
            char buffer[65536];
            const ssize_t count =
                poll(&waiting, 1, milliseconds) > 0 ? recv(socket_, buffer, sizeof buffer, 0) : -1;
            hasEnded_ = count == 0;
            if (count <= 0)
                break;
            received_.append(buffer, static_cast<std::size_t>(count));
        }
        return std::exchange(received_, {});
    }
    // As many bytes, fewer at the end of the connection.
    std::string ReceiveSome(std::size_t bytes) {
        std::string some(bytes, ' ');
        const ssize_t count = recv(socket_, some.data(), bytes, MSG_WAITALL);
        some.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return some;
    }
    // The other end has closed it; known after a Receive.
    bool HasEnded() const { return hasEnded_; }

  private:
    int socket_;
    bool hasEnded_ = false;
    std::string received_;
};

} // namespace pollarix::test
