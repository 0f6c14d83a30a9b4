// The HTTP side of the real server under requests that no browser sends.
#include <gtest/gtest.h>

#include <QFile>

#include <chrono>
#include <csignal>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "server/RawSocket.h"
#include "server/ServerProcess.h"
#include "server/net/HttpServer.h"
#include "server/protocol/RawCall.h"
#include "support/Places.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

std::size_t CountOf(const std::string& text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

const std::string Get = "GET /ws/CallFunc.php?func=x HTTP/1.1\r\n";
const std::string Post = "POST / HTTP/1.1\r\nHost: x\r\n";
const std::string Hidden = "GET /hidden HTTP/1.1\r\nHost: x\r\n\r\n";

} // namespace

TEST(HttpServer, WhatCanBeReadInTwoWaysIsRefusedAndEndsTheConnection) {
    ServerProcess server("body-bytes = 20000\n");
    using namespace std::string_literals;
    const struct {
        const char* name;
        std::string bytes;
        int status;
    } cases[] = {
        {"two lengths", Post + "Content-Length: 3\r\nContent-Length: 4\r\n\r\nabcd", 400},
        {"the same length twice", Post + "Content-Length: 3\r\nContent-Length: 3\r\n\r\nabc", 400},
        {"length and chunks",
         Post + "Content-Length: 3\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400},
        {"chunks and length",
         Post + "Transfer-Encoding: chunked\r\nContent-Length: 3\r\n\r\n0\r\n\r\n", 400},
        {"an encoding within the chunks",
         Post + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n", 400},
        {"chunks twice",
         Post + "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400},
        {"a hidden encoding", Post + "Transfer-Encoding: xchunked\r\n\r\n0\r\n\r\n", 400},
        {"a bad chunk", Post + "Transfer-Encoding: chunked\r\n\r\n-1\r\nabc", 400},
        {"a huge chunk", Post + "Transfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFF\r\nabc", 0},
        {"a length below zero", Post + "Content-Length: -3\r\n\r\nabc", 400},
        {"a length with a sign", Post + "Content-Length: +3\r\n\r\nabc", 400},
        {"a blank before the colon", Get + "Host : x\r\n\r\n", 400},
        {"NUL in a header", Get + "Host: x\0y\r\n\r\n"s, 400},
        {"NUL in the path", "GET /a%00b HTTP/1.1\r\nHost: x\r\n\r\n", 400},
        {"no host", Get + "\r\n", 400},
        {"two hosts", Get + "Host: x\r\nHost: y\r\n\r\n", 400},
        {"line feeds alone", "GET / HTTP/1.1\nHost: x\n\n", 400},
        {"another version", "GET / HTTP/3.0\r\nHost: x\r\n\r\n", 400},
        {"no slash", "GET x HTTP/1.1\r\nHost: x\r\n\r\n", 400},
        {"another method", "TRACE / HTTP/1.1\r\nHost: x\r\n\r\n", 405},
        {"a tunnel", "CONNECT x:1 HTTP/1.1\r\nHost: x\r\n\r\n", 400},
        {"an endless head", Get + "X: " + std::string(40000, 'x') + "\r\n\r\n", 431},
        {"a large body", Post + "Content-Length: 50000000\r\n\r\n", 413},
        {"a large body in chunks",
         Post + "Transfer-Encoding: chunked\r\n\r\n5000\r\n" + std::string(0x5000, 'x') + "\r\n",
         413},
        {"no request at all", "\x16\x03\x01\x02\x00\x01\x00"s + std::string(300, '\xFC'), 400},
    };
    for (const auto& [name, bytes, status] : cases) {
        RawSocket client(server.Port());
        client.Send(bytes + Hidden);
        const std::string reply = client.Receive();
        EXPECT_TRUE(client.HasEnded() || reply.empty()) << name;
        EXPECT_LE(CountOf(reply, "HTTP/1.1 "), 1u) << name << ": " << reply;
        if (status != 0)
            EXPECT_TRUE(reply.starts_with("HTTP/1.1 " + std::to_string(status))) << name << reply;
        else
            EXPECT_TRUE(reply.starts_with("HTTP/1.1 4")) << name << reply;
    }
    // Two good ones behind each other are two answers, and a cut one is none.
    RawSocket client(server.Port());
    client.Send(Get + "Host: x\r\n\r\n" + Get + "Host: x\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(CountOf(client.Receive(), "The server doesn't know this call."), 2u);
    RawSocket(server.Port()).Send(Post + "Content-Length: 30\r\n\r\nabc");
    EXPECT_EQ(server.Stop(), 0);
}

TEST(HttpServer, SlowAndIdleClientsHoldNobodyUpAndAreSentAway) {
    ServerProcess server("request-seconds = 2\nconnections-per-address = 500\n");
    std::vector<std::unique_ptr<RawSocket>> slow;
    for (int i = 0; i < 300; ++i) {
        slow.push_back(std::make_unique<RawSocket>(server.Port()));
        const std::string starts[] = {"", "GET / HT", Post + "Content-Length: 100\r\n\r\nab"};
        slow.back()->Send(starts[i % 3]);
    }
    const auto started = std::chrono::steady_clock::now();
    const auto seconds = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    };
    RawSocket quick(server.Port());
    quick.Send(Get + "Host: x\r\n\r\n");
    EXPECT_NE(quick.Receive("call."), "");
    EXPECT_LT(seconds(), 1);
    for (const auto& client : slow) {
        client->Send("x"); // a byte now and then helps nobody
        client->Receive();
    }
    EXPECT_LT(seconds(), 15);
    // One too many from one address.
    std::vector<std::unique_ptr<RawSocket>> many;
    for (int i = 0; i < 501; ++i)
        many.push_back(std::make_unique<RawSocket>(server.Port()));
    EXPECT_EQ(many.back()->Receive(), "");
    EXPECT_EQ(server.Stop(), 0);
}

TEST(HttpServer, BadSettingsStopItWithOneLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"http = nonsense\n",
         "line 3: http has to be an address and a port, such as 127.0.0.1:8421"},
        {"# fine\n\nbody-bytes = 5\n",
         "line 5: body-bytes has to be a number from 1024 to 67108864"},
        {"colour = red\n", "line 3: there is no setting \"colour\""},
        {"url =\n", "line 3: url has no value"},
        {"http = 127.0.0.1:1\nftp = off\n", "Can't listen on 127.0.0.1 port 1"},
    };
    QTemporaryDir directory;
    for (const auto& [lines, message] : cases) {
        const QString file = directory.filePath("settings");
        QFile settings(file);
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write("\n\n");
        settings.write(lines);
        settings.close();
        if (geteuid() == 0 && QString(message).contains("port 1"))
            continue; // to root all ports are open
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(DataFile("pollarix-server"),
                      {"--data", directory.filePath("data"), "--config", file, "serve"});
        ASSERT_TRUE(process.waitForFinished());
        const QString said = QString::fromUtf8(process.readAll());
        EXPECT_TRUE(said.contains(message)) << said.toStdString();
        EXPECT_EQ(said.count('\n'), 1);
        EXPECT_NE(process.exitCode(), 0);
    }
}

TEST(Commands, GiveAnInvitationThatWorksAndKeepItOutOfTheJournal) {
    ServerProcess server;
    EXPECT_FALSE((server.Said() + server.Log()).contains("invitation="));
    const QString link = server.Run({"user", "invite"}).trimmed();
    EXPECT_TRUE(link.startsWith(server.Url() + "CreateAccount.php?invitation="))
        << link.toStdString();
    RawSocket client(server.Port());
    client.Send("GET " + link.section('/', -1).prepend('/').toStdString() +
                " HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
    EXPECT_NE(client.Receive().find("Create an account"), std::string::npos);
    EXPECT_EQ(server.Stop(), 0);
    EXPECT_TRUE(server.Run({"user", "invite"}).contains("http://127.0.0.1:8421/CreateAccount.php"));
}

TEST(HttpServer, FinishesWhatItHasBegunAndRefusesWhatIsTooMuch) {
    server::Router router;
    std::promise<void> begun;
    std::promise<void> goOn;
    const std::shared_future<void> mayGoOn = goOn.get_future().share();
    std::once_flag isFirst;
    router.Add("POST", "/wait", [&](const auto&, const auto&) {
        std::call_once(isFirst, [&] { begun.set_value(); });
        mayGoOn.wait();
        return server::Response::Text(200, "done");
    });
    router.AddQuick("GET", "/fail", [](const auto&, const auto&) -> server::Response {
        throw std::runtime_error("secret");
    });
    router.AddQuick("GET", "/stream", [](const auto&, const auto&) {
        server::Response response;
        response.stream = [count = 0](std::string& chunk) mutable {
            if (++count == 3)
                throw std::runtime_error("broken");
            chunk.assign(100000, 'x');
            return true;
        };
        return response;
    });
    std::vector<std::string> log;
    server::HttpBounds bounds;
    bounds.requestsAtOnce = 1;
    bounds.requestsWaiting = 1;
    server::HttpServer http(router, bounds, [&](const std::string& line) { log.push_back(line); });
    const int port = http.Listen("127.0.0.1", 0);
    const auto ask = [&](const std::string& path) {
        RawSocket client(port);
        client.Send("GET " + path + " HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
        return client.Receive();
    };
    const std::string cut = ask("/stream");
    EXPECT_GT(cut.size(), 200000u);
    EXPECT_FALSE(cut.ends_with("0\r\n\r\n")); // so that nobody takes it for whole
    const std::string failed = ask("/fail");
    EXPECT_TRUE(failed.starts_with("HTTP/1.1 500 ") && failed.find("secret") == std::string::npos);
    EXPECT_EQ(log, (std::vector<std::string>{"an answer was cut: broken", "500: secret"}));
    EXPECT_TRUE(ask("/wait").starts_with("HTTP/1.1 405 "));

    const std::string post = "POST /wait HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n";
    RawSocket first(port);
    RawSocket cutOff(port);
    first.Send(post);
    begun.get_future().wait();
    cutOff.Send("GET /never HT");
    // One waits for the thread, the others are too many.
    std::vector<std::unique_ptr<RawSocket>> others;
    for (int i = 0; i < 4; ++i) {
        others.push_back(std::make_unique<RawSocket>(port));
        others.back()->Send(post);
    }
    while (others.size() > 1)
        std::erase_if(others, [](const auto& other) {
            const std::string reply = other->Receive("\r\n", 20);
            EXPECT_TRUE(reply.empty() || reply.starts_with("HTTP/1.1 503 ")) << reply;
            return !reply.empty();
        });

    std::thread stopping([&] { http.Stop(); });
    cutOff.Receive(); // ended, so the stop has begun
    goOn.set_value();
    EXPECT_NE(first.Receive().find("done"), std::string::npos);
    stopping.join();
}

TEST(HttpServer, CountsOfBodiesWhatHasComeAndForEachAddressAlone) {
    server::Router router;
    router.AddQuick("POST", "/", [](const server::Request& request, const auto&) {
        return server::Response::Text(200, "all " + std::to_string(request.body.size()));
    });
    server::HttpBounds bounds;
    bounds.trustedProxies = {"127.0.0.1"};
    bounds.bodiesBytesPerAddress = bounds.bodyBytes;
    server::HttpServer http(router, bounds, [](const std::string&) {});
    const int port = http.Listen("127.0.0.1", 0);
    constexpr int size = 600000;
    const auto begin = [&](const char* address) {
        auto client = std::make_unique<RawSocket>(port);
        client->Send("POST / HTTP/1.1\r\nHost: x\r\nX-Forwarded-For: " + std::string(address) +
                     "\r\nContent-Length: " + std::to_string(size) +
                     "\r\nExpect: 100-continue\r\n\r\n");
        EXPECT_TRUE(client->Receive("\r\n\r\n").starts_with("HTTP/1.1 100 ")) << address;
        return client;
    };
    // Announced by one line, and hardly begun.
    std::vector<std::unique_ptr<RawSocket>> slow;
    for (int i = 0; i < 60; ++i) {
        slow.push_back(begin(i % 2 ? "2001:db8::1" : "2001:db8::2"));
        slow.back()->Send("x");
    }
    // Both together are more than one may have: the one that comes later is refused.
    slow[0]->Send(std::string(size - 2, 'x'));
    slow[1]->Send(std::string(size - 2, 'x'));
    std::string refusal;
    while (refusal.empty()) {
        std::swap(slow[0], slow[1]);
        refusal = slow[1]->Receive("\r\n", 20);
    }
    EXPECT_TRUE(refusal.starts_with("HTTP/1.1 503 "));
    const auto other = begin("192.0.2.1");
    other->Send(std::string(size, 'x'));
    EXPECT_NE(other->Receive("all 600000"), "");
    slow[0]->Send("x");
    EXPECT_NE(slow[0]->Receive("all 600000"), "");
    // What was given back can be had again.
    for (int i = 2; i < 6; ++i) {
        slow[i]->Send(std::string(size - 1, 'x'));
        EXPECT_NE(slow[i]->Receive("all 600000"), "") << i;
    }
}

TEST(HttpServer, GivesASlowReaderItsWholePageAndLetsGoOfOneThatStalls) {
    constexpr std::size_t size = 24 << 20; // more than the system holds for a client
    server::Router router;
    router.AddQuick("GET", "/", [](const auto&, const auto&) {
        return server::Response::Text(200, std::string(size, 'x'));
    });
    server::HttpBounds bounds;
    bounds.secondsForWrite = 3;
    bounds.allBodiesBytes = bounds.bodiesBytesPerAddress = 4 * size;
    server::HttpServer http(router, bounds, [](const std::string&) {});
    const int port = http.Listen("127.0.0.1", 0);
    RawSocket stalled(port);
    stalled.Send("GET / HTTP/1.1\r\nHost: x\r\n\r\n");
    RawSocket steady(port);
    steady.Send("GET / HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
    std::size_t received = 0;
    for (int piece = 0; piece < 24; ++piece) {
        received += steady.ReceiveSome(1 << 20).size();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    received += steady.Receive().size();
    EXPECT_GT(received, size);
    EXPECT_LT(stalled.Receive().size(), size);
    EXPECT_TRUE(stalled.HasEnded());
}

TEST(ACall, IsPartedOnlyAtItsOwnMarks) {
    using Values = std::vector<std::string>;
    const struct {
        const char* query;
        std::optional<Values> values;
    } cases[] = {
        {"func=GetWebUserID&param1=a+b%20c&param2=p#%d?=&x&param3=y&refreshme=1&refreshme=2%2F3",
         Values{"a+b c", "p#%d?=&x&param3=y&refreshme=1"}},
        {"func=GetSurveyID&param1=a&param2=b&param2=7", Values{"a&param2=b", "7"}},
        {"func=CreateSurvey&param1=7&param2=a&param2=b", Values{"7", "a&param2=b"}},
        // Each part in its own code page, as it is sent.
        {"func=GetSurveyName&param1=%E9 & %C3%A9&%80", Values{"\u00e9 & \u00e9&\u20ac"}},
        {"func=GetSurveyName&param1=%41%1", Values{"%41%1"}},
        {"func=MoveNewSurvey&param1=a&param2=b&param4=c", std::nullopt},
        {"func=getsurveyname&param1=1", std::nullopt},
        {"func=GetSurveyName", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [query, values] : cases) {
        const auto call = server::ReadCall(query);
        EXPECT_EQ(call ? std::optional(call->values) : std::nullopt, values) << query;
    }
}
