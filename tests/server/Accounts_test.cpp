// Who gets in, and who doesn't however often he tries.
#include "server/accounts/Accounts.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <thread>

#include "server/accounts/Tickets.h"
#include "server/net/Address.h"
#include "server/net/Http.h"

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

TEST(ATicket, IsGoodForHalfAnHourWhereItWasGivenAndKeepsItsFetchApart) {
    Tickets tickets;
    const Tickets::Login login{5, 1};
    const auto ticket = *tickets.Give(login, "1.1.1.1", Now);
    const auto other = *tickets.Give(login, "1.1.1.1", Now);
    EXPECT_EQ(tickets.Find(ticket, "1.1.1.1", Now + 1799), login);
    EXPECT_FALSE(tickets.Find(ticket, "2.2.2.2", Now + 1800));
    EXPECT_FALSE(tickets.Find(other, "1.1.1.1", Now + 1800)); // unused for too long
    EXPECT_TRUE(tickets.IsHere(login, "1.1.1.1", Now + 1800));
    EXPECT_FALSE(tickets.IsHere({5, 2}, "1.1.1.1", Now + 1800)); // with another password by now
    EXPECT_FALSE(tickets.IsHere(login, "2.2.2.2", Now + 1800));
    const auto wandering = *tickets.Give(login, "2001:db8::1", Now);
    EXPECT_TRUE(tickets.Find(wandering, "2001:db8::2", Now)); // the next address of the same line
    EXPECT_FALSE(tickets.Find(wandering, "2001:db8:0:1::1", Now));

    tickets.NoteFetch(ticket, 3, {70, 0});
    EXPECT_FALSE(tickets.TakeFetch(wandering, 3));
    EXPECT_FALSE(tickets.TakeFetch(ticket, 4));
    EXPECT_EQ(tickets.TakeFetch(ticket, 3)->last, 70);
    EXPECT_FALSE(tickets.TakeFetch(ticket, 3));

    for (int guess = 0; guess < 20; ++guess)
        tickets.Find(0, "1.1.1.1", Now + 1800);
    EXPECT_FALSE(tickets.Find(ticket, "1.1.1.1", Now + 1800));

    // In use all the time, and over all the same.
    const auto busy = *tickets.Give(login, "3.3.3.3", Now);
    Time last = Now;
    while (tickets.Find(busy, "3.3.3.3", last))
        last += 600;
    EXPECT_EQ(last, Now + 4 * 3600);
}

TEST(AnAddress, IsOneHoweverItIsWrittenAndBoundByItsLine) {
    const std::pair<const char*, const char*> cases[] = {{"192.0.2.1", "192.0.2.1"},
                                                         {"::ffff:192.0.2.1", "192.0.2.1"},
                                                         {"::FFFF:c000:201", "192.0.2.1"},
                                                         {"2001:DB8::0:1", "2001:db8::1"},
                                                         {"unknown", ""},
                                                         {"", ""},
                                                         {"1.2.3", ""}};
    for (const auto& [text, plain] : cases) {
        EXPECT_EQ(PlainAddress(text), plain) << text;
        Request request;
        request.address = "127.0.0.1";
        request.headers = {{"X-Forwarded-For", std::string("6.6.6.6, ") + text}};
        TakeProxysWord(request);
        EXPECT_EQ(request.address, *plain ? plain : "127.0.0.1") << text;
    }
    EXPECT_EQ(BoundName("2001:db8::1"), BoundName("2001:db8::ffff:1"));
    EXPECT_NE(BoundName("2001:db8::1"), BoundName("2001:db8:0:1::1"));
    EXPECT_NE(BoundName("192.0.2.1"), BoundName("192.0.2.2"));
}
