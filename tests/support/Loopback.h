// Sockets of the test servers: on 127.0.0.1 only, on a port that was free.
#pragma once

namespace pollarix::test {

// A listening socket, or -1; the port it got goes into port.
int ListenOnLoopback(int& port);

// A port where nothing listens.
int FreePort();

// A blocking connection to 127.0.0.1, or -1.
int ConnectToLoopback(int port);

} // namespace pollarix::test
