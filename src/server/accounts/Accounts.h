// Who may do what: logins of the program and of browsers, new accounts, and bounds on guessing.
// Knows the store, and neither pages nor the exchange.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "server/accounts/Secrets.h"
#include "server/store/Store.h"

namespace pollarix::server {

// How an attempt ended. Words for it are the page's; the program's are in the exchange.
enum class LogInResult {
    Fine,
    Wrong,   // name or password; it isn't told which
    TooMany, // wrong attempts from this address or on this name
    Busy     // too many logins are being checked just now
};
enum class NewAccountResult {
    Fine,
    Closed,       // accounts are made by invitation only, and this is none, or an old one
    NameUnfit,    // empty, longer than 64 bytes, or with characters that a login can't have
    PasswordWeak, // shorter than 8 characters or longer than 128 bytes
    NameTaken,
    TooMany, // from this address today
    Busy
};

struct AccountBounds {
    bool isOpen = false;             // anybody may make an account
    int wrongLogins = 10;            // in a quarter of an hour, per address and per name
    int newAccounts = 5;             // per address and day
    Time sessionSeconds = 12 * 3600; // how long a browser stays logged in
    Time invitationSeconds = 7 * 86400;
};

class Accounts {
  public:
    Accounts(Store& store, const AccountBounds& bounds);
    ~Accounts();

    struct Login {
        LogInResult result = LogInResult::Wrong;
        Id account = None;
        std::int64_t stamp = 0; // the account's at that time
    };
    // Waits while the password is checked. The program sends passwords in a form of its own; one
    // that was set here fits there, whatever characters it has.
    Login LogIn(std::string_view name, std::string_view password, const std::string& address);

    struct Creation {
        NewAccountResult result = NewAccountResult::Closed;
        Id account = None;
    };
    // invitation: the token of the link ("/CreateAccount.php?invitation=<token>"), "" for none.
    Creation CreateAccount(std::string_view name, std::string_view password,
                           std::string_view invitation, const std::string& address);
    // Whether the page should offer its form at all.
    bool MayCreateAccount(std::string_view invitation);
    // A token for such a link.
    std::string Invite();
    // Fine, PasswordWeak, TooMany or Busy; Closed when the old password is wrong. Ends all sessions
    // of the account.
    NewAccountResult ChangePassword(Id account, std::string_view oldPassword,
                                    std::string_view newPassword, const std::string& address);
    // Without the old password; for the commands of the machine's keeper.
    NewAccountResult SetPassword(Id account, std::string_view newPassword);

    // Sessions of browsers: the token is the cookie's value.
    std::string StartSession(Id account);
    // Nothing when there is none, it is over, or its account is disabled.
    std::optional<Session> FindSession(std::string_view token);
    void EndSession(std::string_view token);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace pollarix::server
