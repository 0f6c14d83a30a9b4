#include "platform/base/Handlers.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <cstdio>
#include <utility>

namespace pollarix {

namespace {

FailureReporter& Reporter() {
    static FailureReporter reporter;
    return reporter;
}

void Report(const Failure& failure) noexcept {
    try {
        if (Reporter())
            Reporter()(failure);
        else
            std::fprintf(stderr, "Run-time failure %d: %s\n", failure.Number(), failure.what());
    } catch (...) {
        std::fprintf(stderr, "Run-time failure %d could not be shown\n", failure.Number());
    }
}

} // namespace

void SetFailureReporter(FailureReporter reporter) {
    Reporter() = std::move(reporter);
}

void RunHandler(const std::function<void()>& handler) noexcept {
    if (!handler)
        return;
    try {
        handler();
    } catch (const std::exception&) {
        Report(CaughtFailure());
    }
}

Failure CaughtFailure() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return Failure(7, "Out of memory");
    } catch (const std::exception& other) {
        return Failure(51, QString::fromLocal8Bit(other.what()));
    }
}

void DoEvents() {
    QCoreApplication::processEvents();
}

void DoPaintEvents() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

} // namespace pollarix
