// The per-user settings store: application name, section, key. Values are text. The file holds
// passwords, so only its owner can read it.
#pragma once

#include <QList>
#include <QPair>
#include <QString>

namespace pollarix {

class Settings {
  public:
    // The store in the given directory, which is made if missing. One file for each application.
    explicit Settings(QString directory);
    // The directory of this user's settings.
    static QString DefaultDirectory();

    QString GetSetting(const QString& application, const QString& section, const QString& key,
                       const QString& fallback) const;
    // Throws PathOrFileAccess, naming the file, when the store can't be written.
    void SaveSetting(const QString& application, const QString& section, const QString& key,
                     const QString& value);
    // All keys and values of a section, by key in natural order: "ServerName9" before
    // "ServerName10".
    QList<QPair<QString, QString>> GetAllSettings(const QString& application,
                                                  const QString& section) const;

  private:
    QString FileOf(const QString& application) const;
    QString directory_;
};

} // namespace pollarix
