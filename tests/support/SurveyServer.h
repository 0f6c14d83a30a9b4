// A survey server on 127.0.0.1 that answers from scripted replies and records what it was asked. It
// runs in a thread of its own, since the program's calls block the thread they are made on.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace pollarix::test {

struct ServerReply {
    enum class Ending {
        Whole,
        CutOff,  // half of the promised body, then the connection ends
        Dropped, // the connection ends without a word
        Dripping // twenty bytes a second
    };
    QByteArray body{};
    int status = 200;
    QByteArray headers{}; // further lines, each with its CR LF
    Ending ending = Ending::Whole;
    int delayMs = 0; // waits so long before the first byte, but never beyond the server's end

    // "Success<br>" + value + "<br>"
    static ServerReply Success(const QByteArray& value);
    static ServerReply Redirect(const QByteArray& location, int status = 302);
};

class SurveyServer {
  public:
    SurveyServer();
    ~SurveyServer();
    SurveyServer(const SurveyServer&) = delete;
    SurveyServer& operator=(const SurveyServer&) = delete;

    int Port() const { return port_; }
    // The web root, with its closing "/".
    QString Url() const;

    // Adds a reply for a server function ("GetWebUserID") or a path ("/page"). Replies of one name
    // are given in their order, the last one again and again. What has none is answered with 404.
    void Answer(const QString& name, ServerReply reply);

    // The request targets as they came, bytes as Latin-1, in order.
    QStringList Targets() const;
    // The calls alone: "GetWebUserID&param1=..." without what the cache buster adds.
    QStringList Calls() const;
    // The whole heads of the requests.
    std::vector<QByteArray> Heads() const;
    // Forgets what it was asked and keeps the replies.
    void Forget();

  private:
    void Serve();
    void AnswerOne(int socket);
    ServerReply ReplyTo(const QByteArray& target);
    // Waits until the socket can be read or the server ends; true for the former.
    bool WaitFor(int socket) const;
    void WaitMs(int milliseconds) const;

    int listening_ = -1;
    int port_ = 0;
    int wakeUp_[2] = {-1, -1}; // its writing end is closed to end the server
    mutable std::mutex mutex_;
    std::map<QString, std::deque<ServerReply>> replies_;
    std::vector<QByteArray> heads_;
    std::thread thread_;
};

} // namespace pollarix::test
