#include "support/FtpServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QThread>

#include <gtest/gtest.h>

#include "platform/files/Files.h"
#include "support/Bytes.h"
#include "support/Loopback.h"

#include <csignal>

#include <poll.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace pollarix::test {

namespace {

constexpr int StartSeconds = 20;
constexpr int StartAttempts = 5;

// Runs in the child before the server does.
void PrepareChild(qint64 largestFile) {
    setpgid(0, 0);
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    if (largestFile < 0)
        return;
    // Writing beyond the limit then fails like writing to a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{static_cast<rlim_t>(largestFile), static_cast<rlim_t>(largestFile)};
    setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace

FtpServer::FtpServer(const FtpServerOptions& options) {
    QDir(directory_.path()).mkpath("root/incoming");
    QDir(directory_.path()).mkpath("empty");
    WriteWholeFile(Path("passwords"), Password().toUtf8() + '\n');
    for (int attempt = 0; attempt < StartAttempts; ++attempt)
        if (Start(options, attempt))
            return;
    ADD_FAILURE() << "vsftpd can't be started; it comes with scripts/install-dependencies.sh. "
                  << process_.readAll().toStdString() << process_.errorString().toStdString();
}

FtpServer::~FtpServer() {
    Stop();
}

bool FtpServer::Start(const FtpServerOptions& options, int attempt) {
    const passwd* self = getpwuid(geteuid());
    const QByteArray user = self ? self->pw_name : "nobody";
    const QByteArray greeting = "ready " + QByteArray::number(getpid()) + '-' +
                                QByteArray::number(quintptr(this)) + '-' +
                                QByteArray::number(attempt);
    port_ = FreePort();
    // The login is the anonymous one, since a real one would need an account of the system; its
    // passwords are those of the file.
    WriteWholeFile(
        Path("vsftpd.conf"),
        "listen=YES\nlisten_ipv6=NO\nlisten_address=127.0.0.1\nlisten_port=" +
            QByteArray::number(port_) +
            "\nbackground=NO\nrun_as_launching_user=YES\nseccomp_sandbox=NO\nisolate=NO\n"
            "isolate_network=NO\nallow_writeable_chroot=YES\nport_enable=NO\n"
            "pasv_address=127.0.0.1\ndelay_failed_login=0\nlocal_enable=NO\nanonymous_enable=YES\n"
            "write_enable=YES\nanon_upload_enable=YES\nanon_other_write_enable=YES\n"
            "anon_umask=022\nsecure_email_list_enable=YES\nemail_password_file=" +
            Path("passwords").toUtf8() + "\nanon_root=" + Path("root").toUtf8() +
            "\nsecure_chroot_dir=" + Path("empty").toUtf8() + "\nftp_username=" + user +
            "\nnopriv_user=" + user +
            "\nxferlog_enable=YES\nxferlog_std_format=NO\n"
            "log_ftp_protocol=YES\nvsftpd_log_file=" +
            Path("log").toUtf8() + "\nftpd_banner=" + greeting + '\n' + options.furtherLines);
    const QString program = QStandardPaths::findExecutable("vsftpd");
    process_.setProgram(program.isEmpty() ? "/usr/sbin/vsftpd" : program);
    process_.setArguments({Path("vsftpd.conf")});
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setChildProcessModifier(
        [largestFile = options.largestFile] { PrepareChild(largestFile); });
    process_.start();
    if (process_.waitForStarted(StartSeconds * 1000) && WaitUntilItGreets(greeting))
        return true;
    Stop();
    return false;
}

// The greeting tells this server from another one that took the port meanwhile.
bool FtpServer::WaitUntilItGreets(const QByteArray& greeting) {
    const QDeadlineTimer deadline(StartSeconds * 1000);
    while (!deadline.hasExpired() && !process_.waitForFinished(20)) {
        const int socket = ConnectToLoopback(port_);
        if (socket < 0)
            continue;
        char buffer[512];
        pollfd waiting{socket, POLLIN, 0};
        const ssize_t count =
            poll(&waiting, 1, StartSeconds * 1000) > 0 ? recv(socket, buffer, sizeof buffer, 0) : 0;
        close(socket);
        return count > 0 && QByteArray(buffer, count).contains(greeting + "\r\n");
    }
    return false;
}

void FtpServer::Stop() {
    if (const qint64 group = process_.processId(); group > 0)
        kill(-static_cast<pid_t>(group), SIGKILL);
    process_.waitForFinished(StartSeconds * 1000);
}

QByteArray FtpServer::File(const QString& path) const {
    return BytesOf(Path("root/" + path));
}

QStringList FtpServer::Incoming() const {
    return QDir(Path("root/incoming")).entryList(QDir::Files, QDir::Name);
}

QStringList FtpServer::Commands() const {
    static const QRegularExpression line(R"re(FTP command: Client "127\.0\.0\.1", "(.*)"$)re",
                                         QRegularExpression::MultilineOption);
    QStringList commands;
    const QString log = QString::fromUtf8(BytesOf(Path("log")));
    for (auto found = line.globalMatch(log); found.hasNext();)
        commands << found.next().captured(1);
    return commands;
}

} // namespace pollarix::test
