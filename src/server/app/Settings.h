// The server's settings: a file of lines "name = value", each with a default. What each is for
// stands in docs/server.md.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "server/accounts/Accounts.h"
#include "server/ftp/FtpReceiver.h"
#include "server/net/HttpServer.h"
#include "server/store/Store.h"

namespace pollarix::server {

// One line that says what is wrong where.
struct BadSettings : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Endpoint {
    std::string address = "127.0.0.1";
    std::uint16_t port = 0;
    bool isOff = false;
};

struct Settings {
    std::string data; // directory of the database; "" for one in the user's home
    Endpoint http{"127.0.0.1", 8421, false};
    Endpoint ftp{"127.0.0.1", 8422, false};
    std::string
        url; // what the server is known by outside, with its closing "/"; "" for the request's
    HttpBounds httpBounds;
    FtpBounds ftpBounds;
    AccountBounds accounts;
    Retention retention;
    int submissionsPerMinute = 60; // of one address
    int surveysPerAccount = 1000;
    PublishBounds publish;
};

// Throws BadSettings for a name that isn't there, a value that can't be, and a file that can't be
// read.
Settings ReadSettings(const std::string& file);
// The same from the text itself; file is its name in messages.
Settings ParseSettings(const std::string& text, const std::string& file);

} // namespace pollarix::server
