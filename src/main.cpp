#include "app/Application.h"
#include "app/DesktopService.h"
#include "cli/CommandLine.h"

int main(int argc, char **argv)
{
    using namespace tarnovel;
    const bool editor = app::DesktopService::startedByBus(argc, argv) || !cli::isCommand(argc, argv);
    return editor ? app::runEditor(argc, argv) : cli::runCommandLine(argc, argv);
}
