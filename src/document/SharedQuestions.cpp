#include "document/SharedQuestions.h"

#include <QHash>

#include <algorithm>
#include <optional>
#include <utility>

#include "document/clsSurvey.h"
#include "platform/base/Failure.h"

namespace pollarix {

namespace {

using Question = SurveySnapshot::Question;

std::int64_t BytesOf(const Question& question) {
    std::int64_t units = question.Text.size();
    for (const SurveySnapshot::Response& r : question.responses)
        units += r.Text.size();
    return static_cast<std::int64_t>(sizeof question +
                                     question.responses.size() * sizeof(SurveySnapshot::Response)) +
           units * static_cast<std::int64_t>(sizeof(QChar));
}

std::shared_ptr<const Question> ValueOf(const clsQ& q) {
    auto value = std::make_shared<Question>(SurveySnapshot::Take(q));
    value->QuestionNo.clear();
    return value;
}

} // namespace

void QuestionSharer::Release(Entry& entry) {
    if (entry.value)
        released_ += BytesOf(*entry.value);
    entry.value.reset();
}

void QuestionSharer::Touch(const clsQ& q) {
    const auto at = std::find_if(entries_.begin(), entries_.end(),
                                 [&](const Entry& entry) { return entry.object.get() == &q; });
    if (at != entries_.end())
        Release(*at);
}

SharedQuestions QuestionSharer::Take(const clsSurvey& survey) {
    const auto count = static_cast<std::size_t>(survey.QCount());
    SharedQuestions questions;
    questions.reserve(count);
    std::optional<QHash<const clsQ*, std::size_t>> places; // made where the order has changed
    std::vector<Entry> entries;
    entries.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        std::shared_ptr<clsQ> q = survey.GetQIndex(Narrow16(static_cast<std::int64_t>(i) + 1));
        std::size_t at = i;
        if (at >= entries_.size() || entries_[at].object != q) {
            if (!places) {
                places.emplace();
                for (std::size_t j = 0; j < entries_.size(); ++j)
                    if (entries_[j].object)
                        places->insert(entries_[j].object.get(), j);
            }
            at = places->value(q.get(), entries_.size());
        }
        Entry entry;
        if (at < entries_.size())
            entry = std::exchange(entries_[at], {});
        entry.object = std::move(q);
        if (!entry.value)
            entry.value = ValueOf(*entry.object);
        questions.push_back({entry.value, entry.object->QuestionNo});
        entries.push_back(std::move(entry));
    }
    for (Entry& gone : entries_)
        Release(gone);
    entries_ = std::move(entries);
    return questions;
}

void QuestionSharer::PutInto(clsSurvey& survey, const SharedQuestions& questions) {
    Take(survey);
    QHash<const Question*, std::size_t> places;
    for (std::size_t j = 0; j < entries_.size(); ++j)
        places.insert(entries_[j].value.get(), j);
    survey.ClearAll();
    std::vector<Entry> entries;
    entries.reserve(questions.size());
    for (const SharedQuestion& question : questions) {
        const std::size_t at = places.value(question.value.get(), entries_.size());
        Entry entry = at < entries_.size() ? std::exchange(entries_[at], {})
                                           : Entry{question.value->ToObject(), question.value};
        entry.object->QuestionNo = question.number;
        survey.Append(entry.object);
        entries.push_back(std::move(entry));
    }
    for (Entry& gone : entries_)
        Release(gone);
    entries_ = std::move(entries);
}

std::int64_t QuestionSharer::TakeReleased() {
    return std::exchange(released_, 0);
}

} // namespace pollarix
