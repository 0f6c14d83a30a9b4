// The answer scales of matrix questions: read from the survey file for the lists that offer them,
// and written there when a new one is made. No window here.
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

#include "platform/database/Database.h"

namespace pollarix {

struct ResponseScale {
    std::int64_t id = 0; // responsematrixgroup.id
    QString text;        // the points in order, joined with "/"; "" for a scale without points
};

// All scales but the reserved one, in the order in which they were made.
std::vector<ResponseScale> ReadResponseScales(Connection& SurveyConnection);

// Writes a new scale with these points at once, in one batch, and gives its id.
std::int64_t AddResponseScale(Connection& SurveyConnection, const QStringList& points);

} // namespace pollarix
