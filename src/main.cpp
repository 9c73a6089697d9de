#include "app/Application.h"
#include "cli/CommandLine.h"

int main(int argc, char **argv)
{
    return tarnovel::isCommand(argc, argv) ? tarnovel::runCommandLine(argc, argv)
                                           : tarnovel::runEditor(argc, argv);
}
