// All answers as a file that statistics programs and spreadsheets read, labels included: one writer
// for each format. Not for asking where to: that is the business of the screens.
#pragma once

#include <QString>

#include "platform/database/Database.h"
#include "statistics/Answers.h"
#include "statistics/Sample.h"

namespace pollarix::labelled {

// What all writers share. They write as they read, in bounded memory; the file at the path is
// replaced when the new one is whole. `step` is told of progress and may throw to end the work. Of
// a sample only the chosen respondents are written, and its weights, if there are any, as a column
// at the end. All throw what the database and the file throw, and InvalidArgument for what the
// format has no room for.
//
// Variables are named q1, q2_3 (the third response of the second question), q5_1 (a sub question);
// the question is their label. "Left empty" and "not asked" are told apart as far as the format
// knows missing values.
using statistics::LoadStep;
using statistics::Sample;

// SPSS: value labels, measurement levels, missing values -1 and -2 (or lower ones, where an open
// question has negative answers). A text of more than 32,767 bytes is cut: there is no room for
// more.
void WriteSav(Connection& survey, const QString& path, const Sample& sample, const LoadStep& step);

// Stata 14 and later: value labels, missing values .a (left empty) and .b (not asked). The format
// knows no measurement levels. The texts of a question that has one of more than 2,045 bytes stay
// in memory until the end, as the format wants them behind everything else.
void WriteDta(Connection& survey, const QString& path, const Sample& sample, const LoadStep& step);

// A workbook of four sheets: the answers as texts, the same as numbers, the codebook, and how often
// each answer was given. No cell is a formula, whatever the answers look like. Sheets have room for
// 1,048,575 respondents and 16,384 columns, cells for 32,767 characters; longer texts are cut.
void WriteXlsx(Connection& survey, const QString& path, const Sample& sample, const LoadStep& step);

// A script for R that reads the answers and labels them, at the path, and beside it the answers as
// numbers: the script's name without ".R", and "-answers.csv" behind. Throws PathOrFileAccess when
// such a file is there although the script is not, since then it is something else.
void WriteR(Connection& survey, const QString& path, const Sample& sample, const LoadStep& step);

// The codebook as a page of HTML: every variable with its question, level and the meaning of its
// numbers. Holds no answers.
void WriteCodebook(Connection& survey, const QString& path, const Sample& sample,
                   const LoadStep& step);

} // namespace pollarix::labelled
