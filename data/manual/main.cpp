#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "CommandTable.h"
#include "Completion.h"
#include "ManualPage.h"
#include "language/AppLanguage.h"

using namespace tarnovel;

namespace {

/// Writes a file whole, and its folder where it is missing. Ends the program when it cannot.
void write(const std::filesystem::path &file, const std::string &text)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file);
    stream << text;
    stream.close();
    if (!stream) {
        std::fprintf(stderr, "%s cannot be written\n", file.c_str());
        std::exit(1);
    }
}

void speak(AppLanguage language)
{
    setLanguageSources({[language] { return languageName(language); }, [] { return QStringList(); }});
}

void writePages(const std::filesystem::path &folder)
{
    const manual::CommandTable table = manual::readCommandTable();
    write(folder / "tarnovel.1", manual::programPage(table));
    for (const manual::CommandRow &command : table.commands) {
        write(folder / ("tarnovel-" + command.name + ".1"), manual::commandPage(command));
    }
}

} // namespace

/// Writes the manual pages in three languages and the completion of three shells: write_manuals FOLDER
int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "write_manuals FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    speak(AppLanguage::french);
    writePages(folder / "man" / "fr" / "man1");
    speak(AppLanguage::chinese);
    writePages(folder / "man" / "zh_CN" / "man1");
    speak(AppLanguage::english);
    writePages(folder / "man" / "man1");
    const manual::CommandTable table = manual::readCommandTable();
    write(folder / "completion" / "tarnovel", manual::bashCompletion(table));
    write(folder / "completion" / "_tarnovel", manual::zshCompletion(table));
    write(folder / "completion" / "tarnovel.fish", manual::fishCompletion(table));
}
