#include "document/Recovery.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>
#include <utility>

#include "platform/base/Failure.h"
#include "platform/files/Files.h"
#include "platform/files/OwnersLock.h"

namespace pollarix {

namespace {

constexpr const char* Mark = "Pollarix recovery 1\n";
constexpr const char* Suffix = ".recovery";

QDataStream& operator<<(QDataStream& out, const SurveySnapshot::Response& r) {
    return out << qint16(r.DatabaseID) << r.Text << qint16(r.LogicJumpToQuestionID)
               << r.LogicJumpToQuestionKey;
}
QDataStream& operator>>(QDataStream& in, SurveySnapshot::Response& r) {
    return in >> r.DatabaseID >> r.Text >> r.LogicJumpToQuestionID >> r.LogicJumpToQuestionKey;
}
QDataStream& operator<<(QDataStream& out, const SurveyScales::Scale& scale) {
    return out << qint64(scale.id) << scale.name;
}
QDataStream& operator>>(QDataStream& in, SurveyScales::Scale& scale) {
    qint64 id = 0;
    in >> id >> scale.name;
    scale.id = id;
    return in;
}
QDataStream& operator<<(QDataStream& out, const SurveyScales::Point& point) {
    return out << qint64(point.id) << point.name << qint64(point.scale) << qint64(point.pos);
}
QDataStream& operator>>(QDataStream& in, SurveyScales::Point& point) {
    qint64 id = 0, scale = 0, pos = 0;
    in >> id >> point.name >> scale >> pos;
    point.id = id;
    point.scale = scale;
    point.pos = pos;
    return in;
}

template <typename Value> void Put(QDataStream& out, const std::vector<Value>& values);
template <typename Value> void Get(QDataStream& in, std::vector<Value>& values);

QDataStream& operator<<(QDataStream& out, const SurveySnapshot::Question& q) {
    out << qint16(q.DatabaseID) << q.Key << qint32(q.qType) << q.Text << q.QuestionNo
        << qint16(q.OpenEnded_NoOfRows) << qint16(q.ResponseMatrixGroupID);
    Put(out, q.responses);
    return out;
}
QDataStream& operator>>(QDataStream& in, SurveySnapshot::Question& q) {
    in >> q.DatabaseID >> q.Key >> q.qType >> q.Text >> q.QuestionNo >> q.OpenEnded_NoOfRows >>
        q.ResponseMatrixGroupID;
    Get(in, q.responses);
    return in;
}

template <typename Value> void Put(QDataStream& out, const std::vector<Value>& values) {
    out << static_cast<qint64>(values.size());
    for (const Value& value : values)
        out << value;
}

template <typename Value> void Get(QDataStream& in, std::vector<Value>& values) {
    qint64 count = 0;
    in >> count;
    for (; count > 0 && in.status() == QDataStream::Ok; --count)
        in >> values.emplace_back();
}

QByteArray SumOf(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex() + '\n';
}

} // namespace

QByteArray UnsavedSurvey::ToBytes() const {
    QByteArray content;
    {
        QDataStream out(&content, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_6_4);
        out << path << digest << when << design.selectedKey;
        Put(out, design.questions);
        Put(out, scales.scales);
        Put(out, scales.points);
    }
    return Mark + SumOf(content) + content;
}

std::optional<UnsavedSurvey> UnsavedSurvey::FromBytes(const QByteArray& bytes) {
    const qsizetype head = qsizetype(qstrlen(Mark));
    const QByteArray content = bytes.mid(head + SumOf({}).size());
    if (!bytes.startsWith(Mark) || bytes.mid(head, SumOf({}).size()) != SumOf(content))
        return std::nullopt;
    QDataStream in(content);
    in.setVersion(QDataStream::Qt_6_4);
    UnsavedSurvey survey;
    in >> survey.path >> survey.digest >> survey.when >> survey.design.selectedKey;
    Get(in, survey.design.questions);
    Get(in, survey.scales.scales);
    Get(in, survey.scales.points);
    if (in.status() != QDataStream::Ok)
        return std::nullopt;
    return survey;
}

Recovery::Recovery(QString directory) : directory_(std::move(directory)) {}

Recovery::~Recovery() = default;

void Recovery::Keep(const UnsavedSurvey& survey) {
    if (!own_) {
        // The lock is there before the file, so that nobody ever sees it without one.
        const QString path = directory_ + '/' + QUuid::createUuid().toString(QUuid::Id128) + Suffix;
        auto lock = LockBeside(path);
        if (!lock)
            throw Failure(failure::PathOrFileAccess, directory_ + ": it takes no file");
        own_ = std::make_unique<Slot>(Slot{path, std::move(lock)});
    }
    WriteWholeFile(own_->path, survey.ToBytes());
}

void Recovery::Drop() {
    if (own_)
        QFile::remove(own_->path);
    own_.reset();
}

std::vector<Recovery::Found> Recovery::Search() const {
    std::vector<Found> all;
    const QDateTime oldest = QDateTime::currentDateTime().addDays(-MostDays);
    const QDir directory(directory_);
    for (const QString& name : directory.entryList({QString('*') + Suffix}, QDir::Files)) {
        const QString path = directory.filePath(name);
        auto lock = LockBeside(path);
        QFile file(path);
        if (!lock || !file.open(QIODevice::ReadOnly))
            continue;
        if (auto survey = UnsavedSurvey::FromBytes(file.readAll()))
            all.push_back({{path, std::move(lock)}, *std::move(survey)});
        else if (QFileInfo(path).lastModified() < oldest)
            QFile::remove(path);
    }
    std::sort(all.begin(), all.end(),
              [](const Found& a, const Found& b) { return a.survey.when > b.survey.when; });
    while (!all.empty() && (all.size() > MostFiles || all.back().survey.when < oldest)) {
        Remove(std::move(all.back()));
        all.pop_back();
    }
    // Of programs that went down before they had written anything, or while they did.
    DropLocksOfNothing(directory_, QString('*') + Suffix);
    for (const QFileInfo& part : directory.entryInfoList({QString('*') + Suffix + ".??????"}))
        if (part.lastModified() < oldest)
            QFile::remove(part.filePath());
    return all;
}

void Recovery::Remove(Found found) {
    QFile::remove(found.slot.path);
}

QStringList Recovery::Paths() const {
    QStringList paths;
    const QDir directory(directory_);
    for (const QString& name : directory.entryList({QString('*') + Suffix}, QDir::Files)) {
        QFile file(directory.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        if (const auto survey = UnsavedSurvey::FromBytes(file.readAll()))
            paths << survey->path;
    }
    return paths;
}

void Recovery::Adopt(Found found) {
    Drop();
    own_ = std::make_unique<Slot>(std::move(found.slot));
}

} // namespace pollarix
