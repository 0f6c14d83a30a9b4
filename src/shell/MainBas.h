// The main procedure: what runs when the program starts, in its order.
#pragma once

class QString;

namespace pollarix {

struct ApplicationState;
class frmMain;

// Runs the program to its end and gives the exit code. The arguments, joined with blanks, are the
// path of a survey to open.
int Main(int& argc, char** argv);

// The steps of the main procedure on a main window that was just made: shows it, with the survey
// that the command line names or a new one, then the tip of the day, then asks who starts the
// program for the first time whether to open the tutorial.
void StartUp(ApplicationState& state, frmMain& window, const QString& commandLine);

} // namespace pollarix
