// What lies in a file, for tests that look at it past the program.
#pragma once

#include <QFile>

namespace pollarix::test {

// Empty where there is none, or nothing in it.
inline QByteArray BytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace pollarix::test
