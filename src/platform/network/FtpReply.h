// The replies of an FTP server, line by line as they come in. What they mean for a transfer is
// FtpConnection's business.
#pragma once

#include <QByteArray>
#include <QString>

namespace pollarix {

class FtpReply {
  public:
    // Forgets the reply and its code before a new command. Whether a password was ever asked for
    // stays.
    void Clear();

    // A reply is one line "250 text", or "250-text", any lines, and "250 text". Lines outside a
    // reply that have no code are passed over.
    void AddLine(const QByteArray& line);

    // 100 to 599 of the last reply, 0 for none.
    int Code() const { return code_; }
    // All of its lines as they came, up to a bound.
    const QByteArray& Text() const { return text_; }
    // The lines as they can be shown, at most 256 characters; "" for none.
    QString Shown() const;

    bool PasswordAsked() const { return passwordAsked_; }
    void ForgetPassword() { passwordAsked_ = false; }

  private:
    QByteArray text_;
    int code_ = 0;
    bool goesOn_ = false;
    bool passwordAsked_ = false;
};

} // namespace pollarix
