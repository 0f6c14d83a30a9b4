#include "support/SurveyServer.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include "support/Loopback.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace pollarix::test {

namespace {

constexpr qsizetype LongestHead = 1 << 16;

QByteArray TargetOf(const QByteArray& head) {
    const QByteArray line = head.left(head.indexOf("\r\n"));
    return line.mid(line.indexOf(' ') + 1, line.lastIndexOf(' ') - line.indexOf(' ') - 1);
}

void SendAll(int socket, const QByteArray& bytes) {
    for (qsizetype sent = 0; sent < bytes.size();) {
        const ssize_t count = send(socket, bytes.constData() + sent,
                                   static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (count <= 0)
            return;
        sent += count;
    }
}

} // namespace

ServerReply ServerReply::Success(const QByteArray& value) {
    return {.body = "Success<br>" + value + "<br>"};
}

ServerReply ServerReply::Redirect(const QByteArray& location, int status) {
    return {.body = "moved", .status = status, .headers = "Location: " + location + "\r\n"};
}

SurveyServer::SurveyServer() {
    listening_ = ListenOnLoopback(port_);
    if (listening_ < 0 || pipe(wakeUp_) != 0) {
        ADD_FAILURE() << "the survey server could not listen on 127.0.0.1";
        return;
    }
    thread_ = std::thread([this] { Serve(); });
}

SurveyServer::~SurveyServer() {
    close(wakeUp_[1]);
    if (thread_.joinable())
        thread_.join();
    close(wakeUp_[0]);
    close(listening_);
}

QString SurveyServer::Url() const {
    return QString("http://127.0.0.1:%1/").arg(port_);
}

void SurveyServer::Answer(const QString& name, ServerReply reply) {
    const std::lock_guard lock(mutex_);
    replies_[name].push_back(std::move(reply));
}

QStringList SurveyServer::Targets() const {
    QStringList targets;
    for (const QByteArray& head : Heads())
        targets << QString::fromLatin1(TargetOf(head));
    return targets;
}

QStringList SurveyServer::Calls() const {
    QStringList calls;
    for (const QString& target : Targets())
        calls << target.section("func=", 1).section("&refreshme=", 0, 0);
    return calls;
}

std::vector<QByteArray> SurveyServer::Heads() const {
    const std::lock_guard lock(mutex_);
    return heads_;
}

void SurveyServer::Forget() {
    const std::lock_guard lock(mutex_);
    heads_.clear();
}

bool SurveyServer::WaitFor(int socket) const {
    pollfd waiting[] = {{socket, POLLIN, 0}, {wakeUp_[0], POLLIN, 0}};
    return poll(waiting, 2, -1) > 0 && waiting[1].revents == 0;
}

void SurveyServer::WaitMs(int milliseconds) const {
    pollfd end{wakeUp_[0], POLLIN, 0};
    poll(&end, 1, milliseconds);
}

void SurveyServer::Serve() {
    while (WaitFor(listening_)) {
        const int socket = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        AnswerOne(socket);
        close(socket);
    }
}

void SurveyServer::AnswerOne(int socket) {
    QByteArray head;
    while (!head.contains("\r\n\r\n") && head.size() < LongestHead) {
        char buffer[4096];
        const ssize_t count = WaitFor(socket) ? recv(socket, buffer, sizeof buffer, 0) : 0;
        if (count <= 0)
            return;
        head.append(buffer, count);
    }
    ServerReply reply;
    {
        const std::lock_guard lock(mutex_);
        heads_.push_back(head);
        reply = ReplyTo(TargetOf(head));
    }
    WaitMs(reply.delayMs);
    if (reply.ending == ServerReply::Ending::Dropped)
        return;
    const bool whole = reply.ending == ServerReply::Ending::Whole;
    if (reply.ending == ServerReply::Ending::Dripping)
        for (int drop = 0; drop < 200; ++drop, WaitMs(50))
            SendAll(socket, drop == 0 ? "HTTP/1.1 200 OK\r\n\r\n" : "x");
    SendAll(socket, "HTTP/1.1 " + QByteArray::number(reply.status) + " Reply\r\n" + reply.headers +
                        "Content-Length: " + QByteArray::number(reply.body.size()) +
                        "\r\nConnection: close\r\n\r\n" +
                        (whole ? reply.body : reply.body.left(reply.body.size() / 2)));
}

ServerReply SurveyServer::ReplyTo(const QByteArray& target) {
    const QString text = QString::fromLatin1(target);
    const QString name = text.contains("func=") ? text.section("func=", 1).section('&', 0, 0)
                                                : text.section(QRegularExpression("[?#]"), 0, 0);
    const auto found = replies_.find(name);
    if (found == replies_.end())
        return {.body = "Nothing here", .status = 404};
    std::deque<ServerReply>& queue = found->second;
    ServerReply reply = queue.front();
    if (queue.size() > 1)
        queue.pop_front();
    return reply;
}

} // namespace pollarix::test
