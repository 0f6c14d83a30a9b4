// The store's surveys, their documents and drafts.
#include "server/store/Database.h"
#include "server/store/Store.h"
#include "server/store/Writer.h"

namespace pollarix::server {

namespace {

#define SURVEY_COLUMNS                                                                             \
    "SELECT id, account, name, address, is_public, is_open, on_one_page, opens, closes, version, " \
    "created, deleted FROM survey "

Survey ReadSurvey(const Query& row) {
    Survey survey;
    survey.id = row.Number(0);
    survey.account = row.Number(1);
    survey.name = row.Text(2);
    survey.address = row.Text(3);
    survey.isPublic = row.Flag(4);
    survey.isOpen = row.Flag(5);
    survey.onOnePage = row.Flag(6);
    survey.opens = row.Number(7);
    survey.closes = row.Number(8);
    survey.version = static_cast<int>(row.Number(9));
    survey.created = row.Number(10);
    survey.deleted = row.Number(11);
    return survey;
}

std::optional<Survey> FirstSurvey(Query row) {
    return row.Next() ? std::optional(ReadSurvey(row)) : std::nullopt;
}

std::vector<Survey> AllSurveys(Query row) {
    std::vector<Survey> surveys;
    while (row.Next())
        surveys.push_back(ReadSurvey(row));
    return surveys;
}

std::optional<std::string> FirstText(Query row) {
    return row.Next() ? std::optional(row.Text(0)) : std::nullopt;
}

// Whether another survey of the account, which isn't deleted, has the name.
bool IsNameTaken(Connection& database, Id account, const std::string& name, Id but) {
    return database
        .Ask("SELECT 1 FROM survey WHERE account = ? AND name = ? AND deleted = 0 AND id <> ?",
             account, name, but)
        .Next();
}

} // namespace

Id Store::CreateSurvey(Id account, const std::string& name, const std::string& address, Time now) {
    Id id = None;
    writer_->Run([&](Connection& database) {
        id = None;
        if (IsNameTaken(database, account, name, None))
            return;
        database
            .Ask("INSERT INTO survey (account, name, address, created) VALUES (?, ?, ?, ?)",
                 account, name, address, now)
            .Run();
        id = database.LastId();
        if (id > LargestId)
            throw OutOfNumbers("This server has no number left for another survey.");
    });
    return id;
}

std::optional<Survey> Store::FindSurvey(Id survey) {
    return database_->Reading([&](Connection& database) {
        return FirstSurvey(database.Ask(SURVEY_COLUMNS "WHERE id = ?", survey));
    });
}

std::optional<Survey> Store::FindSurvey(Id account, const std::string& name) {
    return database_->Reading([&](Connection& database) {
        return FirstSurvey(database.Ask(
            SURVEY_COLUMNS "WHERE account = ? AND name = ? AND deleted = 0", account, name));
    });
}

std::optional<Survey> Store::FindSurveyByAddress(const std::string& address) {
    return database_->Reading([&](Connection& database) {
        return FirstSurvey(
            database.Ask(SURVEY_COLUMNS "WHERE address = ? AND deleted = 0", address));
    });
}

std::vector<Survey> Store::ListSurveys(Id account) {
    return database_->Reading([&](Connection& database) {
        return AllSurveys(database.Ask(SURVEY_COLUMNS "WHERE account = ? ORDER BY id", account));
    });
}

std::vector<Survey> Store::ListPublicSurveys(Time now, int most) {
    return database_->Reading([&](Connection& database) {
        return AllSurveys(database.Ask(
            SURVEY_COLUMNS "WHERE is_public = 1 AND deleted = 0 AND version > 0 AND is_open = 1 "
                           "AND opens <= ? AND (closes = 0 OR closes > ?) ORDER BY name LIMIT ?",
            now, now, most));
    });
}

bool Store::ChangeSurvey(const Survey& survey) {
    bool isChanged = false;
    writer_->Run([&](Connection& database) {
        isChanged =
            !IsNameTaken(database, survey.account, survey.name, survey.id) &&
            database.Ask("UPDATE survey SET name = ?, is_public = ?, is_open = ?, on_one_page = ?, "
                         "opens = ?, closes = ? WHERE id = ?",
                         survey.name, survey.isPublic, survey.isOpen, survey.onOnePage,
                         survey.opens, survey.closes, survey.id)
                    .Run() == 1;
    });
    return isChanged;
}

bool Store::DeleteSurvey(Id survey, Time now) {
    bool isDeleted = false;
    writer_->Run([&](Connection& database) {
        isDeleted =
            database.Ask("UPDATE survey SET deleted = ? WHERE id = ? AND deleted = 0", now, survey)
                .Run() == 1;
    });
    return isDeleted;
}

bool Store::UndeleteSurvey(Id survey) {
    bool isBack = false;
    writer_->Run([&](Connection& database) {
        isBack = false;
        const auto found = FirstSurvey(database.Ask(SURVEY_COLUMNS "WHERE id = ?", survey));
        if (!found || IsNameTaken(database, found->account, found->name, survey))
            return;
        isBack = database.Ask("UPDATE survey SET deleted = 0 WHERE id = ?", survey).Run() == 1;
    });
    return isBack;
}

void Store::KeepUpload(Id survey, const std::string& document, Time now) {
    writer_->Run([&](Connection& database) {
        database
            .Ask("INSERT OR REPLACE INTO upload (survey, document, received) VALUES (?, ?, ?)",
                 survey, Bytes{document}, now)
            .Run();
    });
}

std::optional<std::string> Store::FindUpload(Id survey) {
    return database_->Reading([&](Connection& database) {
        return FirstText(database.Ask("SELECT document FROM upload WHERE survey = ?", survey));
    });
}

int Store::Publish(Id survey, const std::string& document, bool isPublic, Time now) {
    int live = 0;
    writer_->Run([&](Connection& database) {
        live = 0;
        const auto found =
            FirstSurvey(database.Ask(SURVEY_COLUMNS "WHERE id = ? AND deleted = 0", survey));
        if (!found)
            return;
        live = found->version;
        if (FirstText(database.Ask("SELECT document FROM version WHERE survey = ? AND number = ?",
                                   survey, live)) != document) {
            ++live;
            database
                .Ask("INSERT INTO version (survey, number, document, published) "
                     "VALUES (?, ?, ?, ?)",
                     survey, live, Bytes{document}, now)
                .Run();
        }
        database
            .Ask("UPDATE survey SET version = ?, is_public = ? WHERE id = ?", live, isPublic,
                 survey)
            .Run();
        database.Ask("DELETE FROM upload WHERE survey = ?", survey).Run();
    });
    return live;
}

std::optional<std::string> Store::FindVersion(Id survey, int version) {
    return database_->Reading([&](Connection& database) {
        return FirstText(database.Ask(
            "SELECT document FROM version WHERE survey = ? AND number = ?", survey, version));
    });
}

void Store::KeepDraft(const std::string& tokenHash, const Draft& draft) {
    writer_->Run([&](Connection& database) {
        database
            .Ask("INSERT OR REPLACE INTO draft (token_hash, survey, version, answers, updated) "
                 "VALUES (?, ?, ?, ?, ?)",
                 Bytes{tokenHash}, draft.survey, draft.version, Bytes{draft.answers}, draft.updated)
            .Run();
    });
}

std::optional<Draft> Store::FindDraft(const std::string& tokenHash) {
    return database_->Reading([&](Connection& database) -> std::optional<Draft> {
        Query row =
            database.Ask("SELECT survey, version, answers, updated FROM draft WHERE token_hash = ?",
                         Bytes{tokenHash});
        if (!row.Next())
            return std::nullopt;
        return Draft{row.Number(0), static_cast<int>(row.Number(1)), row.Text(2), row.Number(3)};
    });
}

void Store::DeleteDraft(const std::string& tokenHash) {
    writer_->Run([&](Connection& database) {
        database.Ask("DELETE FROM draft WHERE token_hash = ?", Bytes{tokenHash}).Run();
    });
}

} // namespace pollarix::server
