// Takes survey documents by FTP, and does nothing else: no file can be listed, fetched, renamed or
// deleted, and none is written; what was uploaded is handed on in memory. Whether it is welcome is
// decided by who takes it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace pollarix::server {

struct FtpBounds {
    std::size_t documentBytes = 4 * 1024 * 1024;
    int sessions = 16;
    int sessionsPerAddress = 4;
    int idleSeconds = 15;     // without a command, or without data
    int sessionSeconds = 120; // all in all
    // Of data connections, to be opened in a firewall; 0 for any.
    std::uint16_t firstDataPort = 0;
    std::uint16_t lastDataPort = 0;
    // What PASV tells, where the machine is known to others by another IPv4 address; "" for its
    // own.
    std::string publicAddress;
};

// Who decides about uploads and takes them. Both may be called by several threads at once; what
// they throw is told as a failure of the server.
struct UploadTaker {
    // Whether "incoming/<user>-<survey>.xml" is welcome from that address, before any of it is
    // read:
    // "", else why not, in one line.
    std::function<std::string(std::int64_t user, std::int64_t survey, const std::string& address)>
        mayCome;
    // Gets it whole. Gives "" when it is taken, else why not, in one line.
    std::function<std::string(std::int64_t user, std::int64_t survey, std::string document,
                              const std::string& address)>
        take;
};

class FtpReceiver {
  public:
    FtpReceiver(const FtpBounds& bounds, UploadTaker taker,
                std::function<void(const std::string&)> log);
    ~FtpReceiver(); // as Stop
    FtpReceiver(const FtpReceiver&) = delete;
    FtpReceiver& operator=(const FtpReceiver&) = delete;

    // Listens; port 0 for any. Gives the port. Throws std::runtime_error that names the port.
    std::uint16_t Listen(const std::string& address, std::uint16_t port);
    // Ends all sessions; an upload that has come whole is still handed on.
    void Stop();

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace pollarix::server
