// The client of the survey server's one script: eight functions, each a page fetched into the file
// "result.htm" of the user's directory and read there. Not for uploads, and not for what the
// results say.
#pragma once

#include <QString>

#include <cstdint>

#include "platform/files/Directories.h"
#include "web/wininet.h"

namespace pollarix {

class modWebServer {
  public:
    modWebServer(wininet& net, Directories directories);

    // "" at the start of a call and after a download that failed, "Success" after a reply that was
    // accepted, else the body of the reply. Of a reply that holds one value 64 KB are read at most.
    QString LastServerError;

    // Arguments are in the order of the server's parameters, which is not the same in all of them;
    // base is the server's web root with its closing "/". A download that fails and a reply that is
    // refused give -1, "" or false. The calls throw InvalidArgument for a reply that lacks its
    // closing "<br>", Overflow when that lies behind position 32767, TypeMismatch or Overflow for
    // an id that is no 16-bit number, and PathOrFileAccess when the reply can't be read.
    std::int16_t GetWebUserID(const QString& login, const QString& password, const QString& base);
    std::int16_t GetSurveyID(const QString& surveyName, std::int16_t userId, const QString& base);
    std::int16_t CreateSurvey(std::int16_t userId, const QString& surveyName, const QString& base);
    // The published survey's URL.
    QString MoveNewSurvey(const QString& fileName, std::int16_t surveyId, bool isPublic,
                          std::int16_t userId, const QString& base);
    // The ids joined by ",".
    QString GetSurveyListForUser(const QString& userId, const QString& base);
    QString GetSurveyName(const QString& surveyId, const QString& base);
    // The results file as it stands goes into the local file, which is replaced only by a whole
    // one; false also for an empty one. In blocks, since it may be of any size.
    bool GetSurveyResults(const QString& fileName, const QString& base, const QString& localPath);
    bool DeleteSurveyResultsFile(const QString& userId, std::int16_t surveyId, const QString& base);

    // Read the reply file and set LastServerError; true when the reply is accepted, and then with
    // what it holds. Throw as told above.
    bool ServerGetValue(QString& value);
    bool ServerGetDocument(const QString& localPath);

  private:
    bool Download(const QString& function, const QStringList& parameters, const QString& base);
    QString CallForValue(const QString& function, const QStringList& parameters,
                         const QString& base);
    std::int16_t CallForId(const QString& function, const QStringList& parameters,
                           const QString& base);
    QString ReplyBeginning() const; // as much as a value may take

    wininet& net_;
    Directories directories_;
};

} // namespace pollarix
