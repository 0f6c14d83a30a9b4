// From starting the program to the first thing on the screen, and to the main window, which comes
// once the splash is gone. Each start is a process of its own, on a screen in memory and with a new
// user's empty directories. A cold start comes after the system was asked to forget the program and
// its libraries; what other programs use of them it keeps.
//
//   startup_benchmark [path of the program]
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int Runs = 10;
constexpr int LongestWait = 20000;

// A black screen of 1024 x 768 in memory.
class BlackScreen {
  public:
    BlackScreen() {
        server_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        server_.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                               "-noreset"});
        if (server_.waitForReadyRead(LongestWait))
            name_ = ":" + server_.readLine().trimmed();
        display_ = XOpenDisplay(name_.constData());
    }
    ~BlackScreen() {
        if (display_)
            XCloseDisplay(display_);
        server_.terminate();
        server_.waitForFinished();
    }
    BlackScreen(const BlackScreen&) = delete;
    BlackScreen& operator=(const BlackScreen&) = delete;

    bool IsThere() const { return display_ != nullptr; }
    const QByteArray& Name() const { return name_; }

    // Whether anything was painted in a line across the middle, where splash and window are; or in
    // one near the upper edge, where only the main window is.
    bool IsPainted(bool mainWindow) const {
        const int y = mainWindow ? 10 : 384;
        XImage* const line =
            XGetImage(display_, DefaultRootWindow(display_), 0, y, 1024, 1, AllPlanes, ZPixmap);
        bool painted = false;
        for (int x = 0; line && x < line->width && !painted; ++x)
            painted = (XGetPixel(line, x, 0) & 0xffffff) != 0;
        if (line)
            XDestroyImage(line);
        return painted;
    }

  private:
    QProcess server_;
    QByteArray name_;
    Display* display_ = nullptr;
};

struct Start {
    double firstPaint = -1; // milliseconds, -1 for never
    double mainWindow = -1;
};

double WaitFor(const BlackScreen& screen, bool mainWindow, const QElapsedTimer& clock) {
    while (clock.elapsed() < LongestWait) {
        if (screen.IsPainted(mainWindow))
            return static_cast<double>(clock.nsecsElapsed()) / 1e6;
        QThread::usleep(1000);
    }
    return -1;
}

void CollectFiles(qint64 process, QSet<QByteArray>& files) {
    QFile maps(QString("/proc/%1/maps").arg(process));
    if (!maps.open(QIODevice::ReadOnly))
        return;
    for (const QByteArray& line : maps.readAll().split('\n'))
        if (const qsizetype path = line.indexOf('/'); path >= 0)
            files.insert(line.mid(path));
}

void Forget(const QSet<QByteArray>& files) {
    for (const QByteArray& path : files) {
        const int file = open(path.constData(), O_RDONLY | O_CLOEXEC);
        if (file < 0)
            continue;
        posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
        close(file);
    }
}

Start StartOnce(const QString& program, const BlackScreen& screen, QSet<QByteArray>& files) {
    const QTemporaryDir home;
    QFile::setPermissions(home.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", screen.Name());
    environment.insert("QT_QPA_PLATFORM", "xcb");
    for (const char* name :
         {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        environment.insert(name, home.path());
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer clock;
    clock.start();
    process.start(program, QStringList());
    Start start;
    start.firstPaint = WaitFor(screen, false, clock);
    start.mainWindow = WaitFor(screen, true, clock);
    CollectFiles(process.processId(), files);
    process.kill();
    process.waitForFinished();
    while (screen.IsPainted(false) && clock.elapsed() < 2 * LongestWait)
        QThread::msleep(10);
    return start;
}

void Report(const char* what, std::vector<double> values) {
    std::sort(values.begin(), values.end());
    std::printf("%-28s median %7.0f ms   best %7.0f   worst %7.0f\n", what,
                values[values.size() / 2], values.front(), values.back());
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QString program =
        argc > 1 ? QString(argv[1]) : QCoreApplication::applicationDirPath() + "/pollarix";
    const BlackScreen screen;
    if (!screen.IsThere()) {
        std::fprintf(stderr, "There is no screen: is Xvfb installed?\n");
        return 1;
    }
    QSet<QByteArray> files;
    StartOnce(program, screen, files); // shows which files a start reads
    for (const bool cold : {true, false}) {
        std::vector<double> firstPaint;
        std::vector<double> mainWindow;
        for (int run = 0; run < Runs; ++run) {
            if (cold)
                Forget(files);
            const Start start = StartOnce(program, screen, files);
            if (start.firstPaint < 0 || start.mainWindow < 0) {
                std::fprintf(stderr, "Nothing came on the screen.\n");
                return 1;
            }
            firstPaint.push_back(start.firstPaint);
            mainWindow.push_back(start.mainWindow);
        }
        Report(cold ? "cold, first paint" : "warm, first paint", firstPaint);
        Report(cold ? "cold, main window" : "warm, main window", mainWindow);
    }
}
