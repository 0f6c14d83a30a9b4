#include "server/ftp/Sockets.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace pollarix::server {

namespace {

struct Address {
    sockaddr_storage storage{};
    socklen_t size = sizeof(sockaddr_storage);
    sockaddr* Generic() { return reinterpret_cast<sockaddr*>(&storage); }
};

std::string Text(const Address& address) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (address.storage.ss_family == AF_INET) {
        const auto* v4 = reinterpret_cast<const sockaddr_in*>(&address.storage);
        inet_ntop(AF_INET, &v4->sin_addr, text.data(), text.size());
        return text.data();
    }
    if (address.storage.ss_family != AF_INET6)
        return {};
    const auto* v6 = reinterpret_cast<const sockaddr_in6*>(&address.storage);
    if (IN6_IS_ADDR_V4MAPPED(&v6->sin6_addr))
        inet_ntop(AF_INET, &v6->sin6_addr.s6_addr[12], text.data(), text.size());
    else
        inet_ntop(AF_INET6, &v6->sin6_addr, text.data(), text.size());
    return text.data();
}

Address Parsed(const std::string& text, std::uint16_t port) {
    Address address;
    auto* v4 = reinterpret_cast<sockaddr_in*>(&address.storage);
    auto* v6 = reinterpret_cast<sockaddr_in6*>(&address.storage);
    if (inet_pton(AF_INET, text.c_str(), &v4->sin_addr) == 1) {
        v4->sin_family = AF_INET;
        v4->sin_port = htons(port);
        address.size = sizeof(sockaddr_in);
    } else if (inet_pton(AF_INET6, text.c_str(), &v6->sin6_addr) == 1) {
        v6->sin6_family = AF_INET6;
        v6->sin6_port = htons(port);
        address.size = sizeof(sockaddr_in6);
    } else {
        throw std::runtime_error("This is no address: " + text);
    }
    return address;
}

// What has come of a wait for events on the socket.
bool Wait(const Socket& socket, short events, int wake, Moment until) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        until - std::chrono::steady_clock::now());
    std::array<pollfd, 2> waiting = {pollfd{socket.Get(), events, 0}, pollfd{wake, POLLIN, 0}};
    const int count = poll(waiting.data(), waiting.size(),
                           static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 600'000)));
    return count > 0 && waiting[1].revents == 0 && waiting[0].revents != 0;
}

} // namespace

Socket& Socket::operator=(Socket&& other) noexcept {
    if (this != &other) {
        Close();
        descriptor_ = other.Release();
    }
    return *this;
}

int Socket::Release() {
    return std::exchange(descriptor_, -1);
}

void Socket::Close() {
    if (descriptor_ >= 0)
        close(Release());
}

Socket ListenOn(const std::string& address, std::uint16_t port) {
    Address wanted = Parsed(address, port);
    Socket socket(::socket(wanted.storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (!socket.IsOpen() || bind(socket.Get(), wanted.Generic(), wanted.size) != 0 ||
        listen(socket.Get(), 64) != 0)
        throw std::runtime_error("Can't listen on " + address + " port " + std::to_string(port) +
                                 ": " + std::strerror(errno));
    return socket;
}

std::string LocalAddress(const Socket& socket) {
    Address address;
    return getsockname(socket.Get(), address.Generic(), &address.size) == 0 ? Text(address)
                                                                            : std::string();
}

std::string PeerAddress(const Socket& socket) {
    Address address;
    return getpeername(socket.Get(), address.Generic(), &address.size) == 0 ? Text(address)
                                                                            : std::string();
}

std::uint16_t LocalPort(const Socket& socket) {
    Address address;
    if (getsockname(socket.Get(), address.Generic(), &address.size) != 0)
        return 0;
    return ntohs(address.storage.ss_family == AF_INET
                     ? reinterpret_cast<const sockaddr_in*>(&address.storage)->sin_port
                     : reinterpret_cast<const sockaddr_in6*>(&address.storage)->sin6_port);
}

bool WaitToRead(const Socket& socket, int wake, Moment until) {
    return Wait(socket, POLLIN, wake, until);
}

Socket AcceptUntil(const Socket& listener, int wake, Moment until) {
    if (!WaitToRead(listener, wake, until))
        return Socket();
    return Socket(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
}

bool SendAll(const Socket& socket, std::string_view bytes, int wake, Moment until) {
    while (!bytes.empty()) {
        if (!Wait(socket, POLLOUT, wake, until))
            return false;
        const ssize_t sent =
            send(socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    }
    return true;
}

} // namespace pollarix::server
