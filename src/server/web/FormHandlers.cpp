#include <algorithm>
#include <charconv>
#include <memory>

#include "exchange/CodePage.h"
#include "server/accounts/Bounds.h"
#include "server/accounts/Secrets.h"
#include "server/net/Address.h"
#include "server/survey/StoredAnswers.h"
#include "server/web/Assets.h"
#include "server/web/FormPage.h"
#include "server/web/Pages.h"
#include "server/web/RespondentPages.h"

namespace pollarix::server {

namespace {

using exchange::Answers;
using exchange::Questionnaire;

// All on one page, a matrix has a field for each sub question.
constexpr std::size_t MostFields = 20000;

const Words& WordsOf(const Request& request) {
    return WordsFor(request.Header("Accept-Language"));
}

std::optional<std::size_t> Count(std::string_view text) {
    std::size_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || stop != text.data() + text.size())
        return std::nullopt;
    return number;
}

// Of the length and the letters that NewToken gives.
bool IsToken(std::string_view text) {
    return text.size() == 22 && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                      c == '-' || c == '_';
           });
}

// A form as it came back, on the version of the survey that it was made from.
struct SentForm {
    std::shared_ptr<const Questionnaire> questionnaire;
    int version = 0;
    std::string token;
    bool onOnePage = false;
    std::size_t place = 0;
    SentAnswers sent;
    std::string button;
};

// What became of the answers that a form shows again.
enum class Outcome { Fine, NotStored, Closed };

class Form {
  public:
    explicit Form(const Site& site) : site_(site), bound_(site.submissionsPerMinute, 60) {}

    Response Start(const Request& request) const {
        const auto surveys = site_.store.ListPublicSurveys(site_.now());
        return PageResponse(WordsOf(request), StartPage(WordsOf(request), surveys));
    }

    Response Show(const Request& request, const std::string& address) const {
        const Words& words = WordsOf(request);
        const auto survey = Find(address);
        if (!survey)
            return PageResponse(words, FaultPage(words, 404));
        if (!survey->TakesAnswers(site_.now()))
            return PageResponse(words, ClosedPage(words, survey->name));
        return Begun(words, *survey, *Questions(*survey, survey->version));
    }

    std::optional<Response> ShowQuickly(const Request& request, const std::string& address) const {
        const auto survey = site_.store.KnownSurvey(address);
        if (!survey || !survey->TakesAnswers(site_.now()))
            return std::nullopt;
        const auto questionnaire = site_.questionnaires.Known(survey->id, survey->version);
        if (!questionnaire)
            return std::nullopt;
        return Begun(WordsOf(request), *survey, *questionnaire);
    }

    Response Resume(const Request& request, const std::string& address,
                    const std::string& token) const {
        const Words& words = WordsOf(request);
        const auto survey = Find(address);
        const auto draft = site_.store.FindDraft(TokenHash(token));
        if (!survey || !draft || draft->survey != survey->id)
            return PageResponse(words, FaultPage(words, 404));
        if (!survey->TakesAnswers(site_.now()))
            return PageResponse(words, ClosedPage(words, survey->name));
        const auto questionnaire = Questions(*survey, draft->version);
        const std::size_t blank = draft->answers.find(' ');
        const auto place = Count(std::string_view(draft->answers).substr(0, blank));
        const auto answers = ReadStoredAnswers(*questionnaire, draft->answers.substr(blank + 1));
        if (!answers)
            throw StoreFailure("a draft can't be read");
        return PageResponse(words,
                            FormPage(words, {.questionnaire = *questionnaire,
                                             .answers = *answers,
                                             .name = survey->name,
                                             .address = survey->address,
                                             .token = token,
                                             .version = draft->version,
                                             .onOnePage = !place,
                                             .place = std::min(place.value_or(0),
                                                               questionnaire->questions.size() - 1),
                                             .mostBytes = site_.bodyBytes}));
    }

    Response Take(const Request& request, const std::string& address) {
        const Words& words = WordsOf(request);
        const auto survey = Find(address);
        if (!survey)
            return PageResponse(words, FaultPage(words, 404));
        auto form =
            Read(request, *survey, [&](int version) { return Questions(*survey, version); });
        if (!form)
            return PageResponse(words, FaultPage(words, 400));
        if (auto page = WithoutStoring(request, words, *survey, *form))
            return std::move(*page);
        try {
            return form->button == button::Later ? Keep(request, words, *survey, *form)
                                                 : Store(words, *survey, *form);
        } catch (const StoreFailure&) {
            return Unstored(words, *survey, *form, 503);
        }
    }

    // All but drafts: what is sent waits for its commit without a thread of its own.
    std::optional<Response> TakeQuickly(const Request& request, const std::string& address) {
        const auto survey = site_.store.KnownSurvey(address);
        if (!survey || survey->version == 0 || request.body.size() > LargestQuickForm)
            return std::nullopt;
        const Words& words = WordsOf(request);
        auto form = Read(request, *survey, [&](int version) {
            return site_.questionnaires.Known(survey->id, version);
        });
        if (!form || form->button == button::Later)
            return std::nullopt;
        if (auto page = WithoutStoring(request, words, *survey, *form))
            return page;
        Response response;
        response.begin = [this, survey, &words,
                          form = std::make_shared<const SentForm>(std::move(*form))](
                             const pollarix::server::Resume& resume) {
            site_.store.Submit(
                survey->id, form->version, TokenHash(form->token),
                StoredAnswers(*form->questionnaire, form->sent.answers), site_.now(), LostOf(*form),
                [this, survey, &words, form, resume](Submitted submitted,
                                                     const std::exception_ptr& failure) {
                    resume([this, survey, &words, form, submitted, failed = failure != nullptr] {
                        return failed ? Unstored(words, *survey, *form, 503)
                                      : Told(words, *survey, *form, submitted);
                    });
                });
        };
        return response;
    }

    // The page for a form that was sent and met a failure before anybody looked at it: all that was
    // sent, to be sent again. Nothing when that isn't to be had.
    static std::optional<Response> KeptForm(const Request& request, int status) {
        if (request.method != "POST" || !request.path.starts_with("/s/") || status < 429)
            return std::nullopt;
        const auto fields = FormFields(request.body, MostFields);
        if (!fields || fields->empty())
            return std::nullopt;
        Page page = KeptFormPage(WordsOf(request), request.path, *fields);
        page.status = status;
        Response response = PageResponse(WordsOf(request), page);
        response.headers.emplace_back("Retry-After", "30");
        return response;
    }

  private:
    static constexpr std::size_t LargestQuickForm = 32 * 1024;

    std::optional<Survey> Find(const std::string& address) const {
        auto survey = site_.store.FindSurveyByAddress(address);
        if (survey && survey->version == 0)
            return std::nullopt;
        return survey;
    }

    std::shared_ptr<const Questionnaire> Questions(const Survey& survey, int version) const {
        auto questionnaire = site_.questionnaires.Find(survey.id, version);
        if (!questionnaire)
            throw StoreFailure("a version of a survey is missing");
        return questionnaire;
    }

    // The form as somebody sees it first.
    Response Begun(const Words& words, const Survey& survey,
                   const Questionnaire& questionnaire) const {
        const Answers none = exchange::NoAnswers(questionnaire);
        const std::string token = NewToken();
        return PageResponse(words, FormPage(words, {.questionnaire = questionnaire,
                                                    .answers = none,
                                                    .name = survey.name,
                                                    .address = survey.address,
                                                    .token = token,
                                                    .version = survey.version,
                                                    .onOnePage = survey.onOnePage,
                                                    .mostBytes = site_.bodyBytes}));
    }

    // What there is to say to a form before anything is stored.
    std::optional<Response> WithoutStoring(const Request& request, const Words& words,
                                           const Survey& survey, SentForm& form) {
        if (form.sent.isForeign || !form.sent.tooLong.empty())
            return Again(words, survey, form, 422, Outcome::Fine);
        if (form.button == button::Back || form.button == button::Next) {
            if (form.button == button::Back)
                form.place -= form.place > 0 ? 1 : 0;
            else
                form.place = std::min(form.place + 1, form.questionnaire->questions.size() - 1);
            return Again(words, survey, form, 200, Outcome::Fine);
        }
        if (!bound_.Take(BoundName(request.address), site_.now()))
            return Unstored(words, survey, form, 429);
        return std::nullopt;
    }

    // Letters in the answers that the program can't show.
    static LostCount LostOf(const SentForm& form) {
        exchange::LostLetters lost;
        for (const exchange::Answer& answer : form.sent.answers)
            exchange::NoteLost(answer.text, lost);
        LostCount count{static_cast<std::int64_t>(lost.count), {}};
        for (const char32_t letter : lost.some)
            exchange::AppendLetter(count.some, letter);
        return count;
    }

    // Nothing for what no page of ours sends, and for a version without questions.
    template <typename Questions>
    std::optional<SentForm> Read(const Request& request, const Survey& survey,
                                 Questions questions) const {
        const auto fields = FormFields(request.body, MostFields);
        if (!fields)
            return std::nullopt;
        SentForm form;
        const auto version = Count(FieldOf(*fields, field::Version));
        form.token = FieldOf(*fields, field::Token);
        if (!version || *version < 1 || *version > static_cast<std::size_t>(survey.version) ||
            !IsToken(form.token))
            return std::nullopt;
        form.version = static_cast<int>(*version);
        form.questionnaire = questions(form.version);
        if (!form.questionnaire)
            return std::nullopt;
        const std::size_t count = form.questionnaire->questions.size();
        // How the page was made counts, and not how it would be made now.
        const std::string_view place = FieldOf(*fields, field::Place);
        form.onOnePage = place.empty();
        form.place = Count(place).value_or(form.onOnePage ? 0 : count);
        if (form.place >= count)
            return std::nullopt;
        auto others = ReadStoredAnswers(*form.questionnaire, FieldOf(*fields, field::Others));
        if (!others)
            return std::nullopt;
        const QuestionRange shown =
            form.onOnePage ? QuestionRange{0, count} : QuestionRange{form.place, form.place + 1};
        form.sent = ReadSentAnswers(*form.questionnaire, shown, std::move(*others), *fields);
        form.button = FieldOf(*fields, field::Button);
        if (form.button.empty()) // a press of Enter that named none
            form.button = form.onOnePage || form.place + 1 == count ? button::Send : button::Next;
        for (const std::string_view known :
             {button::Next, button::Back, button::Send, button::Later})
            if (form.button == known)
                return form;
        return std::nullopt;
    }

    Response Again(const Words& words, const Survey& survey, const SentForm& form, int status,
                   Outcome outcome) const {
        Page page = FormPage(words, {.questionnaire = *form.questionnaire,
                                     .answers = form.sent.answers,
                                     .name = survey.name,
                                     .address = survey.address,
                                     .token = form.token,
                                     .version = form.version,
                                     .onOnePage = form.onOnePage,
                                     .place = form.place,
                                     .mostBytes = site_.bodyBytes,
                                     .tooLong = form.sent.tooLong,
                                     .isForeign = form.sent.isForeign,
                                     .wasNotStored = outcome == Outcome::NotStored,
                                     .wasClosed = outcome == Outcome::Closed});
        page.status = status;
        return PageResponse(words, page);
    }

    // All that was typed goes back to who typed it.
    Response Unstored(const Words& words, const Survey& survey, const SentForm& form,
                      int status) const {
        Response response = Again(words, survey, form, status, Outcome::NotStored);
        response.headers.emplace_back("Retry-After", "30");
        return response;
    }

    // Under the form's token, so that sending it drops what was kept.
    Response Keep(const Request& request, const Words& words, const Survey& survey,
                  const SentForm& form) const {
        const Time now = site_.now();
        const std::string place = form.onOnePage ? "-" : std::to_string(form.place);
        const bool isKept = site_.store.KeepDraft(
            TokenHash(form.token),
            {.survey = survey.id,
             .version = form.version,
             .answers = place + ' ' + StoredAnswers(*form.questionnaire, form.sent.answers),
             .updated = now});
        if (!isKept) // too many are kept for this survey
            return Unstored(words, survey, form, 503);
        return PageResponse(words, LaterPage(words, survey.name,
                                             RootOf(site_.base, request) + "s/" + survey.address +
                                                 "/later/" + form.token,
                                             now + site_.retention.drafts));
    }

    Response Store(const Words& words, const Survey& survey, const SentForm& form) const {
        return Told(words, survey, form,
                    site_.store.Submit(survey.id, form.version, TokenHash(form.token),
                                       StoredAnswers(*form.questionnaire, form.sent.answers),
                                       site_.now(), LostOf(form)));
    }

    // Only behind the commit.
    Response Told(const Words& words, const Survey& survey, const SentForm& form,
                  Submitted submitted) const {
        if (submitted == Submitted::Closed)
            return Again(words, survey, form, 403, Outcome::Closed);
        return PageResponse(
            words, ThanksPage(words, survey.name, submitted == Submitted::StoredAsConflict));
    }

    const Site site_;
    Bound bound_;
};

} // namespace

void AddPages(Router& router, const Site& site) {
    const auto form = std::make_shared<Form>(site);
    router.Add("GET", "/",
               [form](const Request& request, const PathParts&) { return form->Start(request); });
    router.AddQuick("GET", "/a/*",
                    [](const Request&, const PathParts& parts) { return AssetResponse(parts[0]); });
    router.Add(
        "GET", "/s/*",
        [form](const Request& request, const PathParts& parts) {
            return form->Show(request, parts[0]);
        },
        [form](const Request& request, const PathParts& parts) {
            return form->ShowQuickly(request, parts[0]);
        });
    router.Add(
        "POST", "/s/*",
        [form](const Request& request, const PathParts& parts) {
            return form->Take(request, parts[0]);
        },
        [form](const Request& request, const PathParts& parts) {
            return form->TakeQuickly(request, parts[0]);
        });
    router.Add("GET", "/s/*/later/*", [form](const Request& request, const PathParts& parts) {
        return form->Resume(request, parts[0], parts[1]);
    });
    AddHolderPages(router, site);
    router.SetErrorPage([](int status, const Request& request) {
        // The program shows a reply as it stands, and takes any other word for a results file.
        if (request.path == "/ws/CallFunc.php")
            return Response::Text(status, "Failure: The server can't do this just now.");
        if (auto kept = Form::KeptForm(request, status))
            return std::move(*kept);
        return PageResponse(WordsOf(request), FaultPage(WordsOf(request), status));
    });
}

} // namespace pollarix::server
