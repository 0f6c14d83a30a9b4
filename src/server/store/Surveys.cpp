// The store's surveys, their documents and drafts.
#include "server/store/Database.h"
#include "server/store/KnownSurveys.h"
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

// Of all versions and uploads of the account, but the survey's upload.
std::int64_t DocumentBytes(Connection& database, Id account, Id but) {
    Query row = database.Ask(
        "SELECT (SELECT coalesce(sum(length(document)), 0) FROM version WHERE survey IN "
        "(SELECT id FROM survey WHERE account = ?1)) + "
        "(SELECT coalesce(sum(length(document)), 0) FROM upload WHERE survey <> ?2 AND survey IN "
        "(SELECT id FROM survey WHERE account = ?1))",
        account, but);
    return row.Next() ? row.Number(0) : 0;
}

// Those of the account without answers and drafts. The live ones stay, and all that another took
// the place of in the last days: a form of theirs may be open in a browser.
void DropUnneededVersions(Connection& database, Id account, Time now) {
    constexpr Time formsLast = 2 * 86400;
    database
        .Ask("DELETE FROM version WHERE survey IN (SELECT id FROM survey WHERE account = ?1) "
             "AND (SELECT min(later.published) FROM version AS later "
             "WHERE later.survey = version.survey AND later.number > version.number) <= ?2 "
             "AND number <> (SELECT version FROM survey WHERE id = version.survey) "
             "AND (survey, number) NOT IN (SELECT survey, version FROM submission "
             "WHERE survey IN (SELECT id FROM survey WHERE account = ?1)) "
             "AND (survey, number) NOT IN (SELECT survey, version FROM draft "
             "WHERE survey IN (SELECT id FROM survey WHERE account = ?1))",
             account, now - formsLast)
        .Run();
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
            throw Bounded("This server has no number left for another survey.");
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
    const std::uint64_t age = known_->Age();
    auto survey = database_->Reading([&](Connection& database) {
        return FirstSurvey(
            database.Ask(SURVEY_COLUMNS "WHERE address = ? AND deleted = 0", address));
    });
    if (survey)
        known_->Keep(age, *survey);
    return survey;
}

std::shared_ptr<const Survey> Store::KnownSurvey(const std::string& address) {
    return known_->Find(address);
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
    known_->Forget();
    return isChanged;
}

bool Store::DeleteSurvey(Id survey, Time now) {
    bool isDeleted = false;
    writer_->Run([&](Connection& database) {
        isDeleted =
            database.Ask("UPDATE survey SET deleted = ? WHERE id = ? AND deleted = 0", now, survey)
                .Run() == 1;
    });
    known_->Forget();
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
    known_->Forget();
    return isBack;
}

void Store::KeepUpload(Id survey, const std::string& document, Time now,
                       const PublishBounds& bounds) {
    writer_->Run([&](Connection& database) {
        const auto found = FirstSurvey(database.Ask(SURVEY_COLUMNS "WHERE id = ?", survey));
        if (!found)
            return;
        const auto hasRoom = [&] {
            return DocumentBytes(database, found->account, survey) +
                       static_cast<std::int64_t>(document.size()) <=
                   bounds.documentBytes;
        };
        if (!hasRoom()) {
            DropUnneededVersions(database, found->account, now);
            if (!hasRoom())
                throw Bounded("The surveys of this account take all the room that it has on this "
                              "server. Please delete some that are no longer needed.");
        }
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

int Store::Publish(Id survey, const std::string& document, bool isPublic, Time now,
                   const PublishBounds& bounds) {
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
            const auto hasRoom = [&] {
                Query row = database.Ask("SELECT count(*) FROM version WHERE survey = ?", survey);
                return row.Next() && row.Number(0) < bounds.versions;
            };
            if (!hasRoom()) {
                DropUnneededVersions(database, found->account, now);
                if (!hasRoom())
                    throw Bounded("This survey was published with changes too often. Please "
                                  "publish it under another name.");
            }
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
    known_->Forget();
    return live;
}

std::optional<std::string> Store::FindVersion(Id survey, int version) {
    return database_->Reading([&](Connection& database) {
        return FirstText(database.Ask(
            "SELECT document FROM version WHERE survey = ? AND number = ?", survey, version));
    });
}

bool Store::KeepDraft(const std::string& tokenHash, const Draft& draft, int most) {
    bool isKept = false;
    writer_->Run([&](Connection& database) {
        Query others =
            database.Ask("SELECT count(*) FROM draft WHERE survey = ? AND token_hash <> ?",
                         draft.survey, Bytes{tokenHash});
        isKept = others.Next() && others.Number(0) < most;
        if (isKept)
            database
                .Ask("INSERT OR REPLACE INTO draft (token_hash, survey, version, answers, updated) "
                     "VALUES (?, ?, ?, ?, ?)",
                     Bytes{tokenHash}, draft.survey, draft.version, Bytes{draft.answers},
                     draft.updated)
                .Run();
    });
    return isKept;
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
