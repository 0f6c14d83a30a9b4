// The few things that the receiver of uploads does with sockets. All waiting is bounded, and ends
// at once when the server stops.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pollarix::server {

// A descriptor that closes itself.
class Socket {
  public:
    explicit Socket(int descriptor = -1) : descriptor_(descriptor) {}
    ~Socket() { Close(); }
    Socket(Socket&& other) noexcept : descriptor_(other.Release()) {}
    Socket& operator=(Socket&& other) noexcept;

    int Get() const { return descriptor_; }
    bool IsOpen() const { return descriptor_ >= 0; }
    int Release();
    void Close();

  private:
    int descriptor_;
};

using Moment = std::chrono::steady_clock::time_point;

// Throws std::runtime_error that names address and port. Port 0 for any.
Socket ListenOn(const std::string& address, std::uint16_t port);
// "192.0.2.1" or "2001:db8::1"; an IPv4 address within IPv6 is told as IPv4. "" when it can't be
// had.
std::string LocalAddress(const Socket& socket);
std::string PeerAddress(const Socket& socket);
std::uint16_t LocalPort(const Socket& socket);

// Waits until there is something to read, the moment has come, or the wake descriptor can be read.
bool WaitToRead(const Socket& socket, int wake, Moment until);
// Like that, then takes a connection. Not open when none came.
Socket AcceptUntil(const Socket& listener, int wake, Moment until);
// False when not all of it could be sent by then.
bool SendAll(const Socket& socket, std::string_view bytes, int wake, Moment until);

} // namespace pollarix::server
