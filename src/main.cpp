#include "app/Application.h"
#include "cli/CommandLine.h"

int main(int argc, char **argv)
{
    return tarnovel::cli::isCommand(argc, argv) ? tarnovel::cli::runCommandLine(argc, argv)
                                                : tarnovel::app::runEditor(argc, argv);
}
