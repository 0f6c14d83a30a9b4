// Every benchmark runs under a QApplication without a screen, in the C locale.
#include <QApplication>
#include <QLocale>

#include <benchmark/benchmark.h>

#include "Measuring.h"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QLocale::setDefault(QLocale::c());
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == "--alone")
        return pollarix::benchmarks::DoAlone(arguments.mid(2));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
