// The main procedure: what runs when the program starts, in its order.
#pragma once

#include <QString>

#include "platform/base/Failure.h"

namespace pollarix {

struct ApplicationState;
class frmMain;

// Runs the program to its end and gives the exit code. The arguments, joined with blanks, are the
// path of a survey to open.
int Main(int& argc, char** argv);

// The steps of the main procedure on a main window that was just made: shows it, with the survey
// that the command line names or a new one, then the tip of the day, then asks who starts the
// program for the first time whether to open the tutorial. Throws nothing: a step that fails is
// reported and ends the procedure, and the window stays.
void StartUp(ApplicationState& state, frmMain& window, const QString& commandLine);

// What the box says of a run-time failure that no handler caught. One of the database names the
// survey file, which is "" when none is open.
QString FailureText(const Failure& failure, const QString& surveyFile);

} // namespace pollarix
