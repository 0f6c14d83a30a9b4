// All pages of the server, hung onto its router: the form for respondents, the surveys there are,
// and the pages of those who hold them.
#pragma once

#include <functional>
#include <string>

#include "server/accounts/Accounts.h"
#include "server/net/Router.h"
#include "server/store/Store.h"
#include "server/survey/Questionnaires.h"

namespace pollarix::server {

// What the pages stand on. All of it has to live as long as the router.
struct Site {
    Store& store;
    Accounts& accounts;
    Questionnaires& questionnaires;
    // The server's address as others see it, with "/" at its end; "" for that of the request.
    std::string base;
    std::function<Time()> now;
    Retention retention = {};
    int submissionsPerMinute = 60;       // of one address
    std::size_t bodyBytes = 1024 * 1024; // the most that a form may send
};

// Also the page for what nobody answers.
void AddPages(Router& router, const Site& site);

// The half of it that takes a login, and what leads to one.
void AddHolderPages(Router& router, const Site& site);

} // namespace pollarix::server
