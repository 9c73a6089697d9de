#include "cli/CommandLine.h"

int main(int argc, char **argv)
{
    return tarnovel::runCommandLine(argc, argv);
}
