#include "web/wininet.h"

#include <QDateTime>

#include <algorithm>

#include "platform/base/Formats.h"
#include "platform/network/FtpConnection.h"

namespace pollarix {

namespace {

struct ErrorText {
    std::int32_t code;
    const char* text;
};

// Texts stand as they are, with the missing blank in 12013 and the blanks at some ends.
constexpr ErrorText ErrorTexts[] = {
    {12001, "No more handles could be generated at this time"},
    {12002, "The request has timed out."},
    {12004, "An internal error has occurred."},
    {12005, "URL is invalid."},
    {12006, "URL scheme could not be recognized, or is not supported."},
    {12007, "Server name could not be resolved."},
    {12008, "Requested protocol could not be located."},
    {12009,
     "A request to InternetQueryOption or InternetSetOption specified an invalid option value."},
    {12010, "Length of an option supplied to InternetQueryOption or InternetSetOption is incorrect "
            "for the type of option specified."},
    {12011, "The request option can not be set, only queried. "},
    {12012, "The Win32 Internet support is being shutdown or unloaded."},
    {12013, "Request to connect and login to an FTP server could notbe completed because the "
            "supplied user name is incorrect."},
    {12014, "Request to connect and login to an FTP server could not be completed because the "
            "supplied password is incorrect. "},
    {12015, "Request to connect to and login to an FTP server failed."},
    {12016, "Requested operation is invalid. "},
    {12017, "Operation was canceled, usually because the handle on which the request was operating "
            "was closed before the operation completed."},
    {12018, "Type of handle supplied is incorrect for this operation."},
    {12019, "Requested operation can not be carried out because the handle supplied is not in the "
            "correct state."},
    {12020, "Request can not be made via a proxy."},
    {12021, "A required registry value could not be located. "},
    {12022,
     "A required registry value was located but is an incorrect type or has an invalid value."},
    {12023, "Direct network access cannot be made at this time. "},
    {12024, "An asynchronous request could not be made because a zero context value was supplied."},
    {12025,
     "An asynchronous request could not be made because a callback function has not been set."},
    {12026,
     "The required operation could not be completed because one or more requests are pending."},
    {12027, "The format of the request is invalid."},
    {12028, "The requested item could not be located."},
    {12029, "The attempt to connect to the server failed."},
    {12030, "The connection with the server has been terminated."},
    {12031, "The connection with the server has been reset."},
    {12036, "The request failed because the handle already exists."},
};

} // namespace

wininet::wininet(Internet& internet) : internet_(internet) {}

wininet::~wininet() = default;

bool wininet::DownloadToFile(const QString& url, const QString& localPath,
                             bool noCacheBuster) const {
    // Always "&": every URL of this program has a query.
    const QString sent =
        noCacheBuster ? url : url + "&refreshme=" + GeneralDate(QDateTime::currentDateTime());
    return internet_.UrlDownloadToFile(sent, localPath) == 0;
}

bool wininet::Open() {
    Close(); // what a failed upload left open
    InternetHandle = internet_.InternetOpen();
    return InternetHandle.has_value();
}

bool wininet::Connect(const QString& ftpServer, const QString& user, const QString& password) {
    FtpHandle = internet_.InternetConnect(*InternetHandle, ftpServer, user, password);
    return FtpHandle != nullptr;
}

bool wininet::SetCurrentDirectory(const QString& directory) {
    return internet_.FtpSetCurrentDirectory(*FtpHandle, directory);
}

bool wininet::PutFile(const QString& localPath, const QString& remoteName) {
    return internet_.FtpPutFile(*FtpHandle, localPath, remoteName);
}

void wininet::Close() {
    FtpHandle.reset();
    InternetHandle.reset();
}

QString wininet::FtpErrorText(std::int32_t code) const {
    if (code == internet::ServersOwnWords) {
        const QString words = internet_.LastResponse();
        return words.isEmpty() ? QString("Extended error returned from server.")
                               : words.section(QChar(u'\0'), 0, 0);
    }
    const auto* found = std::find_if(std::begin(ErrorTexts), std::end(ErrorTexts),
                                     [code](const ErrorText& row) { return row.code == code; });
    return found == std::end(ErrorTexts) ? QString("Error details not available.")
                                         : QString(found->text);
}

} // namespace pollarix
