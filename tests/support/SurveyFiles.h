// A program's state on temporary directories, and survey files made from the real template. Header
// only: whoever includes it links the document room.
#pragma once

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "document/SurveyBatch.h"
#include "support/Places.h"
#include "support/QueuedDialogs.h"

namespace pollarix::test {

struct TestState {
    QTemporaryDir directory;
    Settings settings{directory.path() + "/settings"};
    QueuedDialogs dialogs;
    ApplicationState state{Directories{DataDirectory(), directory.path()}, settings, dialogs};

    QString Path(const QString& name) const { return directory.path() + '/' + name; }

    // A new survey file without questions.
    QString BlankSurvey(const QString& name) const {
        const QString path = Path(name);
        EXPECT_TRUE(QFile::copy(DataFile("blank.mdb"), path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        return path;
    }
};

// Runs statements on a file past the program, as another tool would.
inline void RunSql(const QString& path, std::initializer_list<const char*> statements) {
    Connection file;
    file.Open(path, Connection::Mode::ReadWriteTrusted);
    for (const char* statement : statements)
        file.Run(statement);
}

// The same in the open survey, as the program itself.
inline void RunOwnSql(ApplicationState& state, std::initializer_list<const char*> statements) {
    SurveyBatch batch(state);
    for (const char* statement : statements)
        state.SurveyConnection.Run(statement);
    batch.Commit();
}

// The rows of a statement, fields joined with "|", Null as "NULL".
inline QStringList SqlRows(const QString& path, const char* sql, int fields) {
    Connection file;
    file.Open(path, Connection::Mode::ReadWriteTrusted);
    QStringList rows;
    for (Recordset row = file.Execute(sql); !row.AtEnd(); row.MoveNext()) {
        QStringList values;
        for (int field = 0; field < fields; ++field)
            values << (row.IsNull(field) ? QString("NULL") : row.Text(field));
        rows << values.join('|');
    }
    return rows;
}

} // namespace pollarix::test
