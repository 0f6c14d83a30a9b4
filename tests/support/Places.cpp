#include "support/Places.h"

namespace pollarix::test {

QString DataDirectory() {
    return POLLARIX_DATA_DIR;
}

QString SourceFile(const QString& name) {
    return QString(POLLARIX_SOURCE_DIR) + '/' + name;
}

} // namespace pollarix::test
