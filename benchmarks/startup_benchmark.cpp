// From starting the program to the main window, without the three seconds that the splash stands
// for whoever presses no key; the counter tells when the first thing was on the screen. Each start
// is a process of its own, on a screen in memory and with a new user's empty directories. A cold
// start comes after the system was asked to forget the program and its libraries; what other
// programs use of them it keeps.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QThread>

#include <benchmark/benchmark.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>

#include "generate_survey.h"

using namespace pollarix::benchmarks;

namespace {

constexpr int LongestWait = 20000;
constexpr double SplashStands = 3000;

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

struct Shown {
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

Shown StartOnce(const QStringList& arguments, const BlackScreen& screen, QSet<QByteArray>& files) {
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
    process.start(QCoreApplication::applicationDirPath() + "/pollarix", arguments);
    Shown start;
    start.firstPaint = WaitFor(screen, false, clock);
    start.mainWindow = WaitFor(screen, true, clock);
    CollectFiles(process.processId(), files);
    process.kill();
    process.waitForFinished();
    while (screen.IsPainted(false) && clock.elapsed() < 2 * LongestWait)
        QThread::msleep(10);
    return start;
}

// A cold start, or one after another; with the survey the program begins with, or with one of 1,000
// questions of 20 responses each, named on the command line.
void Start(benchmark::State& state, bool cold, bool large) {
    const BlackScreen screen;
    if (!screen.IsThere())
        throw std::runtime_error("There is no screen: is Xvfb installed?");
    const QTemporaryDir directory;
    QStringList arguments;
    if (large) {
        arguments << directory.filePath("survey.plxs");
        GenerateQuestions(POLLARIX_DATA_DIR "/blank.mdb", arguments[0], 1000, 20);
    }
    QSet<QByteArray> files;
    StartOnce(arguments, screen, files); // shows which files a start reads
    double firstPaint = 0;
    for ([[maybe_unused]] const auto run : state) {
        if (cold)
            Forget(files);
        const Shown shown = StartOnce(arguments, screen, files);
        if (shown.firstPaint < 0 || shown.mainWindow < 0)
            throw std::runtime_error("Nothing came on the screen.");
        state.SetIterationTime((shown.mainWindow - SplashStands) / 1e3);
        firstPaint += shown.firstPaint;
    }
    state.counters["first_paint_ms"] = {firstPaint, benchmark::Counter::kAvgIterations};
}

void Times(benchmark::internal::Benchmark* measured) {
    measured->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Start, cold, true, false)->Apply(Times);
BENCHMARK_CAPTURE(Start, warm, false, false)->Apply(Times);
BENCHMARK_CAPTURE(Start, survey, false, true)->Apply(Times);

} // namespace
