// A real FTP server (vsftpd) for one test: on 127.0.0.1, on a port of its own, passive mode, with
// everything it needs in a temporary directory and no account of the system. It ends with the
// object, and with the test program at the latest.
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace pollarix::test {

struct FtpServerOptions {
    qint64 largestFile = -1;   // bytes after which the server's disk is full; -1 for never
    QByteArray furtherLines{}; // of its configuration
};

class FtpServer {
  public:
    // Fails the test when the server can't be started.
    explicit FtpServer(const FtpServerOptions& options = {});
    ~FtpServer();
    FtpServer(const FtpServer&) = delete;
    FtpServer& operator=(const FtpServer&) = delete;

    // "127.0.0.1:port"
    QString Host() const { return QString("127.0.0.1:%1").arg(port_); }
    // The one login. Another password is refused with 530, another user before any password.
    static QString User() { return "anonymous"; }
    static QString Password() { return "upload@pollarix.example"; }

    // A file below the login's directory ("incoming/3-7.xml"), empty when it isn't there.
    QByteArray File(const QString& path) const;
    // Names in the directory "incoming".
    QStringList Incoming() const;
    // The commands it was given so far ("CWD incoming"), passwords left out.
    QStringList Commands() const;
    // Ends the server and all of its sessions at once.
    void Stop();

  private:
    bool Start(const FtpServerOptions& options, int attempt);
    bool WaitUntilItGreets(const QByteArray& greeting);
    QString Path(const QString& name) const { return directory_.filePath(name); }

    QTemporaryDir directory_;
    QProcess process_;
    int port_ = 0;
};

} // namespace pollarix::test
