// How an answer is named by its ids, which never change: keys of columns and values of cells in the
// files that a questionnaire filled in outside of the program leaves.
#pragma once

#include <QHash>
#include <QString>

#include <cstdint>
#include <vector>

namespace pollarix::tables {

inline constexpr const char* AnswersFormat = "pollarix-answers";
inline constexpr int AnswersVersion = 1;

// A question; of one of many responses and of a sub question also its response.id; and what stands
// for a response or a point as a value.
inline QString IdKey(std::int64_t id) {
    return QString("id:%1").arg(id);
}
inline QString IdKey(std::int64_t question, std::int64_t response) {
    return QString("id:%1:%2").arg(question).arg(response);
}

// Ids by the code that the survey's variables give them. A file from elsewhere may give one id
// twice; then there are more codes than ids.
inline std::vector<std::int64_t> IdsOf(const QHash<std::int64_t, std::uint32_t>& codes,
                                       std::size_t count) {
    std::vector<std::int64_t> ids(count);
    for (auto code = codes.begin(); code != codes.end(); ++code)
        if (code.value() < count)
            ids[code.value()] = code.key();
    return ids;
}

} // namespace pollarix::tables
