// The real server as a process of its own, on 127.0.0.1 and ports that were free, with its data in
// a temporary directory. It ends with the object.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace pollarix::test {

class ServerProcess {
  public:
    // Further lines of its settings. Fails the test when the server can't be started.
    explicit ServerProcess(const QByteArray& settings = {});
    ~ServerProcess();
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    QString Url() const { return url_; }
    int Port() const { return url_.section(':', -1).chopped(1).toInt(); }
    QString FtpHost() const { return ftpHost_; }
    int FtpPort() const { return ftpHost_.section(':', -1).toInt(); }
    std::string Data() const { return directory_.filePath("data").toStdString(); }
    qint64 Process() const { return process_.processId(); }

    // Runs a command of the server beside it; gives what it wrote, its errors as well.
    QString Run(const QStringList& command, const QByteArray& input = {}) const;
    // Tells it to end, and waits for that; gives its exit code.
    int Stop();
    // What it wrote until it was ready.
    QString Said() const { return said_; }
    // All that it has logged.
    QString Log();

  private:
    QTemporaryDir directory_;
    QProcess process_;
    QString url_;
    QString ftpHost_;
    QString said_;
};

} // namespace pollarix::test
