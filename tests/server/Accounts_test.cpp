// Who gets in, and who doesn't however often he tries.
#include "server/accounts/Accounts.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <thread>

#include "server/accounts/Tickets.h"

using namespace pollarix::server;

namespace {

constexpr Time Now = 1'800'000'000;

class Logins : public testing::Test {
  protected:
    QTemporaryDir directory;
    Store store{directory.path().toStdString()};
    Accounts accounts{store, {}};
};

} // namespace

TEST_F(Logins, AnInvitationMakesOneAccountAndPasswordsEndSessions) {
    EXPECT_EQ(accounts.CreateAccount("anna", "long enough", "", "1.1.1.1").result,
              NewAccountResult::Closed);
    const std::string invitation = accounts.Invite();
    const std::pair<std::string, NewAccountResult> names[] = {
        {"", NewAccountResult::NameUnfit},
        {"a&param2=b", NewAccountResult::NameUnfit},
        {std::string(65, 'a'), NewAccountResult::NameUnfit},
        {"Grüße", NewAccountResult::Fine},
        {"late", NewAccountResult::Closed}}; // it is used up
    for (const auto& [name, result] : names)
        EXPECT_EQ(accounts.CreateAccount(name, "long enough", invitation, "1.1.1.1").result, result)
            << name;
    const Accounts::Login login = accounts.LogIn("Grüße", "long enough", "1.1.1.1");
    ASSERT_EQ(login.result, LogInResult::Fine);

    const std::string session = accounts.StartSession(login.account);
    EXPECT_EQ(accounts.FindSession(session)->account, login.account);
    EXPECT_FALSE(accounts.FindSession(session + "x"));
    EXPECT_EQ(accounts.ChangePassword(login.account, "wrong", "another one", "1.1.1.1"),
              NewAccountResult::Closed);
    EXPECT_EQ(accounts.ChangePassword(login.account, "long enough", "short", "1.1.1.1"),
              NewAccountResult::PasswordWeak);
    EXPECT_TRUE(accounts.FindSession(session));
    EXPECT_EQ(accounts.ChangePassword(login.account, "long enough", "another one", "1.1.1.1"),
              NewAccountResult::Fine);
    EXPECT_FALSE(accounts.FindSession(session));
    store.SetDisabled(login.account, true);
    EXPECT_EQ(accounts.LogIn("Grüße", "another one", "1.1.1.1").result, LogInResult::Wrong);
}

TEST_F(Logins, GuessingIsLockedOutForTheGuesserAlone) {
    store.CreateAccount("anna", HashPassword("long enough"), Now);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(accounts.LogIn(i % 2 ? "anna" : "nobody", "wrong", "2001:db8::1").result,
                  LogInResult::Wrong);
    // Also from the next address of the same line, and with the right password.
    EXPECT_EQ(accounts.LogIn("anna", "long enough", "2001:db8::2").result, LogInResult::TooMany);
    EXPECT_EQ(accounts.LogIn("ANNA", "long enough", "1.1.1.1").result, LogInResult::Fine);
}

TEST(ATicket, IsGoodForHalfAnHourAtItsAddressAndKeepsItsFetchApart) {
    Tickets tickets;
    const auto ticket = *tickets.Give(5, "1.1.1.1", Now);
    const auto other = *tickets.Give(5, "1.1.1.1", Now);
    EXPECT_EQ(tickets.AccountOf(ticket, "1.1.1.1", Now + 1799), 5);
    EXPECT_EQ(tickets.AccountOf(ticket, "2.2.2.2", Now + 1800), None);
    EXPECT_EQ(tickets.AccountOf(other, "1.1.1.1", Now + 1800), None); // unused for too long
    EXPECT_TRUE(tickets.IsHere(5, "1.1.1.1", Now + 1800));
    EXPECT_FALSE(tickets.IsHere(5, "2.2.2.2", Now + 1800));

    tickets.NoteFetch(ticket, 3, 70);
    EXPECT_EQ(tickets.TakeFetch(other, 3), None);
    EXPECT_EQ(tickets.TakeFetch(ticket, 4), None);
    EXPECT_EQ(tickets.TakeFetch(ticket, 3), 70);
    EXPECT_EQ(tickets.TakeFetch(ticket, 3), None);

    for (int guess = 0; guess < 20; ++guess)
        tickets.AccountOf(0, "1.1.1.1", Now + 1800);
    EXPECT_EQ(tickets.AccountOf(ticket, "1.1.1.1", Now + 1800), None);
    EXPECT_EQ(tickets.AccountOf(ticket, "1.1.1.1", Now + 3599 + 1), None); // over by then, too
}
