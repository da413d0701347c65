#include "apps/gpsbook/commands/Program.h"

int main(int argc, char** argv) { return gpsbook::RunProgram(argc, argv); }
