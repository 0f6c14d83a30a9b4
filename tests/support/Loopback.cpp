#include "support/Loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace pollarix::test {

namespace {

sockaddr_in Address(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(port));
    return address;
}

} // namespace

int ListenOnLoopback(int& port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = Address(0);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (socket < 0 || bind(socket, generic, size) != 0 || listen(socket, 16) != 0 ||
        getsockname(socket, generic, &size) != 0)
        return -1;
    port = ntohs(address.sin_port);
    return socket;
}

int FreePort() {
    int port = 0;
    close(ListenOnLoopback(port));
    return port;
}

int ConnectToLoopback(int port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Address(port);
    if (connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return socket;
    close(socket);
    return -1;
}

} // namespace pollarix::test
