#include "tables/OpenTable.h"

#include <QFile>

#include "platform/base/Failure.h"
#include "tables/AnswerFile.h"
#include "tables/CsvTable.h"
#include "tables/StatisticsTable.h"
#include "tables/XlsxTable.h"

namespace pollarix::tables {

namespace {

constexpr qint64 BytesOfAHead = 64;

bool LooksLikeStata(const QByteArray& head) {
    if (head.startsWith("<stata_dta>"))
        return true;
    // Older ones: a release from 104 to 115, a byte order, a filetype, a zero.
    return head.size() > 4 && head[0] >= 104 && head[0] <= 115 && (head[1] == 1 || head[1] == 2) &&
           head[2] == 1 && head[3] == 0;
}

} // namespace

std::unique_ptr<Table> OpenTable(const QString& path, const std::optional<TableShape>& shape) {
    QFile file(path);
    if (!file.exists())
        throw Failure(failure::FileNotFound, path + ": there is no such file");
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(failure::PathOrFileAccess, path + ": " + file.errorString());
    const QByteArray head = file.read(BytesOfAHead);
    file.close();
    if (head.startsWith("PK"))
        return std::make_unique<XlsxTable>(path, shape);
    if (head.startsWith("$FL2") || head.startsWith("$FL3"))
        return std::make_unique<StatisticsTable>(path, StatisticsTable::Format::Sav);
    if (LooksLikeStata(head))
        return std::make_unique<StatisticsTable>(path, StatisticsTable::Format::Dta);
    if (head.startsWith("\xD0\xCF\x11\xE0"))
        throw Failure(failure::InvalidArgument,
                      path + ": is a workbook of the old kind or protected by a password. Please "
                             "save it as .xlsx without a password");
    if (AnswerFile::IsOne(head))
        return std::make_unique<AnswerFile>(path, shape);
    return std::make_unique<CsvTable>(path, shape);
}

} // namespace pollarix::tables
