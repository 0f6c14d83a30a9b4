// The receiver of uploads under clients that want more than to upload.
#include "server/ftp/FtpReceiver.h"

#include <gtest/gtest.h>

#include <mutex>
#include <vector>

#include <arpa/inet.h>

#include "server/RawSocket.h"

using namespace pollarix;
using namespace pollarix::test;
using namespace std::string_literals;

namespace {

class Uploads : public testing::Test {
  protected:
    Uploads() {
        bounds.documentBytes = 100000;
        bounds.idleSeconds = 1;
    }
    void Start() {
        server::UploadTaker taker;
        taker.mayCome = [](std::int64_t user, std::int64_t, const std::string&) {
            return user == 9 ? "Who are you?" : "";
        };
        taker.take = [this](std::int64_t user, std::int64_t survey, const std::string& document,
                            const std::string& address) {
            const std::lock_guard lock(mutex);
            taken.push_back(std::to_string(user) + '-' + std::to_string(survey) + ' ' + document +
                            ' ' + address);
            return document == "bad" ? "That is no good." : "";
        };
        receiver = std::make_unique<server::FtpReceiver>(bounds, taker, [](const std::string&) {});
        port = receiver->Listen("127.0.0.1", 0);
    }
    // Sends the lines one after the other; gives the numbers of the replies to them.
    static std::string Codes(RawSocket& client, const std::vector<std::string>& lines) {
        std::string codes;
        for (const std::string& line : lines) {
            client.Send(line + "\r\n");
            std::string reply = client.Receive("\r\n");
            if (reply.starts_with("211-"))
                reply = client.Receive("211 ");
            codes += (codes.empty() ? "" : " ") + reply.substr(0, 3);
        }
        return codes;
    }
    std::unique_ptr<RawSocket> LoggedIn() const {
        auto client = std::make_unique<RawSocket>(port);
        client->Receive("\r\n");
        EXPECT_EQ(Codes(*client, {"USER x", "PASS y", "CWD incoming"}), "331 230 250");
        return client;
    }
    // The port of a new data connection.
    static int DataPort(RawSocket& client) {
        client.Send("EPSV\r\n");
        const std::string reply = client.Receive("\r\n");
        return std::stoi(reply.substr(reply.find("|||") + 3));
    }
    static std::string Upload(RawSocket& client, const std::string& document) {
        const int data = DataPort(client);
        client.Send("STOR 3-7.xml\r\n");
        EXPECT_EQ(client.Receive("\r\n").substr(0, 3), "150");
        RawSocket(data).Send(document);
        return client.Receive("\r\n");
    }

    server::FtpBounds bounds;
    std::mutex mutex;
    std::vector<std::string> taken;
    std::unique_ptr<server::FtpReceiver> receiver;
    int port = 0;
};

} // namespace

TEST_F(Uploads, NothingButADocumentIsTaken) {
    Start();
    RawSocket stranger(port);
    stranger.Receive("\r\n");
    EXPECT_EQ(Codes(stranger, {"CWD incoming", "PASS x", "STOR 1-1.xml", "EPSV", "SYST", "NOOP"}),
              "530 503 530 530 215 200");
    EXPECT_EQ(Codes(stranger, {"RETR 1-1.xml", "LIST", "DELE 1-1.xml", "PORT 127,0,0,1,0,21",
                               "EPRT |1|127.0.0.1|21|", "RNFR x", "MKD x", "SITE EXEC x", "",
                               std::string(300, 'x')}),
              "502 502 502 502 502 502 502 502 502 502");

    const auto client = LoggedIn();
    EXPECT_EQ(Codes(*client, {"CWD ..", "CWD incoming", "CWD /", "STOR 1-1.xml", "CWD /incoming",
                              "PWD", "TYPE I", "TYPE E", "MODE B", "STOR 1-1.xml"}),
              "550 550 250 553 250 257 200 504 502 425");
    DataPort(*client);
    for (const std::string& name :
         {"../1-1.xml"s, "1-1.txt"s, "1.xml"s, "-1-1.xml"s, "0-1.xml"s, "1-1.xml/"s,
          "123456-1.xml"s, "1-1.xml\0.txt"s, "/etc/passwd"s, "a-b.xml"s})
        EXPECT_NE(Codes(*client, {"STOR " + name}), "150") << name;
    EXPECT_EQ(Codes(*client, {"STOR 9-1.xml", "STOR 1-1.xml"}), "550 150");
    receiver->Stop(); // ends the upload that has begun
    EXPECT_EQ(taken.size(), 0u);
}

TEST_F(Uploads, ADocumentIsHandedOnWholeOrNotAtAll) {
    bounds.idleSeconds = 10;
    Start();
    const auto client = LoggedIn();
    EXPECT_EQ(Upload(*client, "hello").substr(0, 3), "226");
    EXPECT_EQ(Upload(*client, "bad"), "550 That is no good.\r\n");
    EXPECT_EQ(Upload(*client, std::string(100001, 'x')).substr(0, 3), "552");

    // From another address on the same machine, which guesses the port.
    const int data = DataPort(*client);
    client->Send("STOR 3-8.xml\r\n");
    client->Receive("\r\n");
    const int other = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in from{};
    from.sin_family = AF_INET;
    inet_pton(AF_INET, "127.0.0.2", &from.sin_addr);
    ASSERT_EQ(bind(other, reinterpret_cast<sockaddr*>(&from), sizeof from), 0);
    sockaddr_in to = from;
    inet_pton(AF_INET, "127.0.0.1", &to.sin_addr);
    to.sin_port = htons(static_cast<in_port_t>(data));
    ASSERT_EQ(connect(other, reinterpret_cast<sockaddr*>(&to), sizeof to), 0);
    char byte = 0;
    EXPECT_LE(recv(other, &byte, 1, 0), 0); // sent away
    close(other);
    RawSocket(data).Send("mine");
    EXPECT_EQ(client->Receive("\r\n").substr(0, 3), "226");
    const std::lock_guard lock(mutex);
    EXPECT_EQ(taken, (std::vector<std::string>{"3-7 hello 127.0.0.1", "3-7 bad 127.0.0.1",
                                               "3-8 mine 127.0.0.1"}));
}

TEST_F(Uploads, SilentClientsAreSentAwayAndMoreThanFewAreNotTaken) {
    Start();
    std::vector<std::unique_ptr<RawSocket>> clients;
    for (int i = 0; i < bounds.sessionsPerAddress; ++i) {
        clients.push_back(LoggedIn());
        clients.back()->Send("NO"); // and then nothing any more
    }
    EXPECT_EQ(RawSocket(port).Receive("\r\n").substr(0, 3), "421");
    for (const auto& client : clients) {
        client->Receive();
        EXPECT_TRUE(client->HasEnded());
    }
    // A line without an end.
    RawSocket endless(port);
    endless.Receive("\r\n");
    endless.Send(std::string(100000, 'x'));
    endless.Receive();
}
