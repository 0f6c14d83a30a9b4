#include "platform/files/Settings.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <utility>

#include "platform/base/Failure.h"
#include "platform/files/Directories.h"

namespace pollarix {

namespace {

constexpr auto OwnerOnly = QFile::ReadOwner | QFile::WriteOwner;

QStringView TakeDigits(QStringView& text) {
    qsizetype count = 0;
    while (count < text.size() && text[count] >= u'0' && text[count] <= u'9')
        ++count;
    const QStringView digits = text.first(count);
    text = text.sliced(count);
    return digits;
}

// Runs of digits compare as numbers of any length, all else character by character.
bool NaturallyLess(QStringView left, QStringView right) {
    while (!left.isEmpty() && !right.isEmpty()) {
        QStringView leftDigits = TakeDigits(left);
        QStringView rightDigits = TakeDigits(right);
        if (!leftDigits.isEmpty() && !rightDigits.isEmpty()) {
            while (leftDigits.startsWith(u'0'))
                leftDigits = leftDigits.sliced(1);
            while (rightDigits.startsWith(u'0'))
                rightDigits = rightDigits.sliced(1);
            if (leftDigits.size() != rightDigits.size())
                return leftDigits.size() < rightDigits.size();
            if (const int order = leftDigits.compare(rightDigits); order != 0)
                return order < 0;
        } else if (!leftDigits.isEmpty() || !rightDigits.isEmpty()) {
            const QChar leftNext = leftDigits.isEmpty() ? left.front() : leftDigits.front();
            const QChar rightNext = rightDigits.isEmpty() ? right.front() : rightDigits.front();
            return leftNext < rightNext;
        } else {
            if (left.front() != right.front())
                return left.front() < right.front();
            left = left.sliced(1);
            right = right.sliced(1);
        }
    }
    return left.size() < right.size();
}

QString TextOf(const QVariant& value) {
    // A comma that was typed into the file by hand reads as a list.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(',');
    return value.toString();
}

} // namespace

Settings::Settings(QString directory) : directory_(std::move(directory)) {
    MakeOwnersDirectory(directory_);
}

QString Settings::DefaultDirectory() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/pollarix";
}

QString Settings::FileOf(const QString& application) const {
    const QByteArray name = QUrl::toPercentEncoding(application, " ");
    return directory_ + '/' + QString::fromLatin1(name) + ".ini";
}

QString Settings::GetSetting(const QString& application, const QString& section, const QString& key,
                             const QString& fallback) const {
    QSettings store(FileOf(application), QSettings::IniFormat);
    store.beginGroup(section);
    const QVariant value = store.value(key);
    return value.isValid() ? TextOf(value) : fallback;
}

void Settings::SaveSetting(const QString& application, const QString& section, const QString& key,
                           const QString& value) {
    const QString path = FileOf(application);
    const auto fail = [&](const QString& why) {
        throw Failure(failure::PathOrFileAccess,
                      "The settings can't be written to " + path + ": " + why);
    };
    // The file is there, and its owner's alone, before anything is written to it; QSettings keeps
    // the permissions it finds.
    QFile file(path);
    if (!file.exists()) {
        if (!file.open(QFile::WriteOnly | QFile::NewOnly, OwnerOnly))
            fail(file.errorString());
        file.close();
    } else if (!file.setPermissions(OwnerOnly)) {
        fail(file.errorString());
    }
    QSettings store(path, QSettings::IniFormat);
    store.beginGroup(section);
    store.setValue(key, value);
    store.sync();
    if (store.status() == QSettings::AccessError)
        fail("the directory or the disk refuses it");
}

QList<QPair<QString, QString>> Settings::GetAllSettings(const QString& application,
                                                        const QString& section) const {
    QSettings store(FileOf(application), QSettings::IniFormat);
    store.beginGroup(section);
    QStringList keys = store.childKeys();
    std::sort(keys.begin(), keys.end(), NaturallyLess);
    QList<QPair<QString, QString>> all;
    for (const QString& key : std::as_const(keys))
        all.append({key, TextOf(store.value(key))});
    return all;
}

} // namespace pollarix
