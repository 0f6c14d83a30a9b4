// The answer scales of a survey file as a value: what a survey that has lost its file takes along.
// Choosing and adding scales is the Design screen's.
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

#include "platform/database/Database.h"

namespace pollarix {

struct SurveyScales {
    struct Scale { // a row of responsematrixgroup
        std::int64_t id = 0;
        QString name;
        bool operator==(const Scale&) const = default;
    };
    struct Point { // a row of responsematrix
        std::int64_t id = 0;
        QString name;
        std::int64_t scale = 0; // its id
        std::int64_t pos = 0;
        bool operator==(const Point&) const = default;
    };
    std::vector<Scale> scales;
    std::vector<Point> points;
    bool operator==(const SurveyScales&) const = default;
};

// Both throw what the database throws.
SurveyScales ReadScales(Connection& file);
// Puts the scales in the place of those that the file has, whole or not at all.
void WriteScales(Connection& file, const SurveyScales& scales);

} // namespace pollarix
