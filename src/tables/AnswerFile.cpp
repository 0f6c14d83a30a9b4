#include "tables/AnswerFile.h"

#include <QDir>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include "platform/base/Failure.h"
#include "tables/AnswerKeys.h"

namespace pollarix::tables {

namespace {

constexpr qint64 LongestFile = 64 << 20; // bytes
constexpr qint64 BytesToKnowBy = 64;
constexpr qsizetype MostFiles = 100000;

struct Sheet {
    QString id; // of the respondent, made by the page
    QString submitted;
    QJsonObject answers;
};

Sheet ReadSheet(const QString& path) {
    const auto refuse = [&path](const QString& why) -> Failure {
        return Failure(failure::InvalidArgument, path + ": " + why);
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(failure::PathOrFileAccess, path + ": " + file.errorString());
    const QByteArray bytes = file.read(LongestFile + 1);
    if (bytes.size() > LongestFile)
        throw refuse("is longer than the answers of anybody");
    QJsonParseError error;
    const QJsonObject all = QJsonDocument::fromJson(bytes, &error).object();
    if (error.error != QJsonParseError::NoError)
        throw refuse(QString("is damaged or cut off, at byte %1 (%2)")
                         .arg(error.offset)
                         .arg(error.errorString()));
    if (all["format"].toString() != AnswersFormat)
        throw refuse("holds no answers to a questionnaire");
    if (all["version"].toInt() != AnswersVersion)
        throw refuse("was made by a later version of this program");
    return {all["respondent"].toString(), all["submitted"].toString(), all["answers"].toObject()};
}

bool IsAnswerFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && AnswerFile::IsOne(file.read(BytesToKnowBy));
}

} // namespace

bool AnswerFile::IsOne(QByteArrayView begin) {
    return begin.trimmed().startsWith('{') && begin.toByteArray().contains(AnswersFormat);
}

AnswerFile::AnswerFile(const QString& path, const std::optional<TableShape>& shape) {
    if (shape)
        shape_ = *shape;
    shape_.canTakeNeighbours = true;
    const QFileInfo chosen(path);
    if (shape_.takesNeighbours) {
        for (const QString& name : chosen.dir().entryList({"*.json"}, QDir::Files, QDir::Name))
            if (paths_.size() < MostFiles && IsAnswerFile(chosen.dir().filePath(name)))
                paths_ << chosen.dir().filePath(name);
    }
    if (paths_.isEmpty())
        paths_ << path;
    columns_ = {{"file", {}}, {"date", {}}};
    QSet<QString> known;
    for (const QString& each : paths_)
        for (const QString& key : ReadSheet(each).answers.keys()) {
            if (known.contains(key))
                continue;
            if (columns_.size() >= MostColumns)
                throw Failure(failure::InvalidArgument,
                              each + QString(": there are more than %1 columns").arg(MostColumns));
            known.insert(key);
            columns_.push_back({key, {}});
        }
}

void AnswerFile::Read(const RowSink& sink) {
    QHash<QString, std::size_t> places;
    for (std::size_t i = 2; i < columns_.size(); ++i)
        places.insert(columns_[i].name, i);
    QSet<QString> seen;
    TableRow row;
    for (const QString& path : paths_) {
        ++row.number;
        row.part = static_cast<double>(row.number) / static_cast<double>(paths_.size());
        const Sheet sheet = ReadSheet(path);
        if (!sheet.id.isEmpty() && seen.contains(sheet.id))
            continue;
        seen.insert(sheet.id);
        row.cells.assign(columns_.size(), Cell());
        row.cells[0].text = QFileInfo(path).fileName();
        row.cells[1].text = sheet.submitted;
        for (auto answer = sheet.answers.begin(); answer != sheet.answers.end(); ++answer) {
            // Files may have changed since their columns were noted.
            const auto place = places.constFind(answer.key());
            if (place == places.cend())
                continue;
            Cell& cell = row.cells[*place];
            cell.text = answer.value().toString().remove(QChar(u'\0'));
            if (!answer.value().isString())
                cell.fault = "is no text, as every answer in such a file is";
        }
        if (!sink(row))
            return;
    }
}

} // namespace pollarix::tables
