#include "web/modWebServer.h"

#include <QFile>
#include <QStringList>

#include <utility>

#include "platform/base/Failure.h"
#include "platform/base/Windows1252.h"
#include "platform/files/Files.h"

namespace pollarix {

namespace {

constexpr int ValuePosition = 12; // from 1, behind "Success<br>"

// What is read of a reply that holds one value: more than a value may take.
constexpr qint64 LongestValueReply = 1 << 16; // bytes

[[noreturn]] void ThrowUnreadable(const QFile& file) {
    throw Failure(failure::PathOrFileAccess,
                  QString("Can't read %1: %2").arg(file.fileName(), file.errorString()));
}

} // namespace

modWebServer::modWebServer(wininet& net, Directories directories)
    : net_(net), directories_(std::move(directories)) {}

std::int16_t modWebServer::GetWebUserID(const QString& login, const QString& password,
                                        const QString& base) {
    return CallForId("GetWebUserID", {login, password}, base);
}

std::int16_t modWebServer::GetSurveyID(const QString& surveyName, std::int16_t userId,
                                       const QString& base) {
    return CallForId("GetSurveyID", {surveyName, QString::number(userId)}, base);
}

std::int16_t modWebServer::CreateSurvey(std::int16_t userId, const QString& surveyName,
                                        const QString& base) {
    return CallForId("CreateSurvey", {QString::number(userId), surveyName}, base);
}

QString modWebServer::MoveNewSurvey(const QString& fileName, std::int16_t surveyId, bool isPublic,
                                    std::int16_t userId, const QString& base) {
    return CallForValue(
        "MoveNewSurvey",
        {fileName, QString::number(surveyId), isPublic ? "True" : "False", QString::number(userId)},
        base);
}

QString modWebServer::GetSurveyListForUser(const QString& userId, const QString& base) {
    return CallForValue("GetSurveyListForUser", {userId}, base);
}

QString modWebServer::GetSurveyName(const QString& surveyId, const QString& base) {
    return CallForValue("GetSurveyName", {surveyId}, base);
}

bool modWebServer::GetSurveyResults(const QString& fileName, const QString& base,
                                    const QString& localPath) {
    return Download("GetSurveyResults", {fileName}, base) && ServerGetDocument(localPath);
}

bool modWebServer::DeleteSurveyResultsFile(const QString& userId, std::int16_t surveyId,
                                           const QString& base) {
    return !CallForValue("DeleteSurveyResultsFile", {userId, QString::number(surveyId)}, base)
                .isEmpty();
}

bool modWebServer::ServerGetValue(QString& value) {
    const QString body = ReplyBeginning();
    if (!body.startsWith(u"Success")) {
        LastServerError = body;
        return false;
    }
    LastServerError = "Success";
    // Positions count from 1, 0 is "not found". The four characters behind the word are skipped
    // unread, and the search begins at the last of them.
    const qsizetype mark = body.indexOf(u"<br>", ValuePosition - 2);
    if (mark < 0 && body.size() == LongestValueReply)
        throw Failure(failure::Overflow); // it could only stand too far behind
    const std::int16_t position = Narrow16(mark + 1);
    // A reply without its closing mark is not refused: its length comes out below zero.
    const int length = position - ValuePosition;
    if (length < 0)
        throw Failure(failure::InvalidArgument);
    value = body.mid(ValuePosition - 1, length);
    return true;
}

bool modWebServer::ServerGetDocument(const QString& localPath) {
    const QString beginning = ReplyBeginning();
    if (beginning.startsWith(u"Failure")) {
        LastServerError = beginning;
        return false;
    }
    LastServerError = "Success";
    if (beginning.isEmpty())
        return false;
    QFile reply(directories_.InUser("result.htm"));
    if (!reply.open(QIODevice::ReadOnly))
        ThrowUnreadable(reply);
    WholeFile local(localPath);
    QByteArray block(1 << 16, Qt::Uninitialized);
    for (qint64 read = 0; (read = reply.read(block.data(), block.size())) != 0;) {
        if (read < 0)
            ThrowUnreadable(reply);
        local.Write(QByteArrayView(block).first(read));
    }
    local.Finish();
    return true;
}

// Values are not encoded here: an "&" in a name changes the query as the server sees it.
bool modWebServer::Download(const QString& function, const QStringList& parameters,
                            const QString& base) {
    LastServerError.clear();
    QString url = base + "ws/CallFunc.php?func=" + function;
    for (int i = 0; i < parameters.size(); ++i)
        url += "&param" + QString::number(i + 1) + '=' + parameters[i];
    return net_.DownloadToFile(url, directories_.InUser("result.htm"), false);
}

QString modWebServer::CallForValue(const QString& function, const QStringList& parameters,
                                   const QString& base) {
    QString value;
    if (!Download(function, parameters, base) || !ServerGetValue(value))
        return {};
    return value;
}

std::int16_t modWebServer::CallForId(const QString& function, const QStringList& parameters,
                                     const QString& base) {
    QString value;
    if (!Download(function, parameters, base) || !ServerGetValue(value))
        return -1;
    return ToNumber16(value);
}

QString modWebServer::ReplyBeginning() const {
    QFile file(directories_.InUser("result.htm"));
    if (!file.open(QIODevice::ReadOnly))
        ThrowUnreadable(file);
    return FromWindows1252(file.read(LongestValueReply));
}

} // namespace pollarix
