#include "server/ServerProcess.h"

#include <QFile>

#include <gtest/gtest.h>

#include "support/Places.h"

namespace pollarix::test {

ServerProcess::ServerProcess(const QByteArray& settings) {
    QFile file(directory_.filePath("settings"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("http = 127.0.0.1:0\nftp = 127.0.0.1:0\n" + settings);
    file.close();
    process_.setStandardErrorFile(directory_.filePath("log"));
    process_.start(DataFile("pollarix-server"),
                   {"--data", directory_.filePath("data"), "--config", file.fileName(), "serve"});
    const auto behind = [](const QString& line, const char* words) {
        const qsizetype at = line.indexOf(words);
        return at < 0 ? QString() : line.mid(at + static_cast<qsizetype>(qstrlen(words)));
    };
    while (process_.canReadLine() || process_.waitForReadyRead(30000)) {
        const QString line = QString::fromUtf8(process_.readLine()).trimmed();
        said_ += line + '\n';
        if (const QString url = behind(line, "Survey server: "); !url.isEmpty())
            url_ = url;
        if (const QString host = behind(line, "uploads: "); !host.isEmpty())
            ftpHost_ = host;
        if (line == "Ready.")
            return;
    }
    ADD_FAILURE() << "The server did not start: " << Log().toStdString();
}

ServerProcess::~ServerProcess() {
    Stop();
}

QString ServerProcess::Run(const QStringList& command, const QByteArray& input) const {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(DataFile("pollarix-server"),
                  QStringList{"--data", directory_.filePath("data")} + command);
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished());
    return QString::fromUtf8(process.readAll());
}

int ServerProcess::Stop() {
    if (process_.state() == QProcess::Running) {
        process_.terminate();
        EXPECT_TRUE(process_.waitForFinished()) << "The server does not end.";
    }
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

QString ServerProcess::Log() {
    QFile file(directory_.filePath("log"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace pollarix::test
