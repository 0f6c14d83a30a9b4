// The main procedure: what runs when the program starts, in its order.
#pragma once

namespace pollarix {

// Runs the program to its end and gives the exit code. The arguments, joined with blanks, are the
// path of a survey to open.
int Main(int& argc, char** argv);

} // namespace pollarix
