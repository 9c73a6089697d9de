#include "CommandTable.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "cli/Grammar.h"
#include "collage/CollagePreset.h"
#include "film/FilmStockCatalog.h"
#include "render/BuiltInTemplate.h"

namespace tarnovel::manual {

namespace {

constexpr int fewestCells = 2;
constexpr int mostCells = 9;

OptionRow readOption(const CLI::Option &option)
{
    OptionRow row;
    for (const std::string &name : option.get_snames()) {
        row.names.push_back("-" + name);
    }
    for (const std::string &name : option.get_lnames()) {
        row.names.push_back("--" + name);
    }
    row.value = option.get_expected_max() == 0 ? "" : option.get_type_name();
    row.description = option.get_description();
    row.repeatable = option.get_multi_option_policy() == CLI::MultiOptionPolicy::Throw &&
                     option.get_items_expected_max() > 1;
    return row;
}

CommandRow readCommand(const CLI::App &app)
{
    CommandRow row;
    row.name = app.get_name();
    row.description = app.get_description();
    for (const CLI::Option *option : app.get_options()) {
        if (option->get_positional()) {
            row.operands = option->get_name() + (option->get_items_expected_max() > 1 ? "..." : "");
        } else {
            row.options.push_back(readOption(*option));
        }
    }
    return row;
}

std::vector<std::string> templateIds()
{
    std::vector<std::string> ids;
    for (const BuiltInTemplate look : BuiltInTemplates::all()) {
        ids.push_back(BuiltInTemplates::id(look).toStdString());
    }
    return ids;
}

std::vector<std::string> stockNames()
{
    std::vector<std::string> names;
    for (const FilmStock &stock : FilmStockCatalog::available()) {
        names.push_back(QString(stock.name).toStdString());
    }
    return names;
}

std::vector<std::string> layoutIds()
{
    std::vector<std::string> ids;
    for (int count = fewestCells; count <= mostCells; ++count) {
        for (const CollagePreset &preset : CollagePreset::all(count)) {
            if (const std::string id = preset.id.toStdString(); std::ranges::find(ids, id) == ids.end()) {
                ids.push_back(id);
            }
        }
    }
    return ids;
}

std::vector<std::string> alternatives(const std::string &value)
{
    std::vector<std::string> parts;
    std::istringstream text(value);
    for (std::string part; std::getline(text, part, '|');) {
        parts.push_back(part);
    }
    return parts;
}

} // namespace

CommandTable readCommandTable()
{
    cli::Requests requests;
    cli::Grammar grammar(requests);
    CommandTable table;
    table.program = readCommand(grammar.app());
    table.program.name.clear();
    for (const CLI::App *command : grammar.app().get_subcommands([](const CLI::App *) { return true; })) {
        if (!command->get_group().empty()) {
            table.commands.push_back(readCommand(*command));
        }
    }
    return table;
}

std::vector<std::string> knownValues(const OptionRow &option)
{
    static const std::map<std::string, std::vector<std::string>> byName = {
        {"--template", templateIds()},
        {"--layout", layoutIds()},
        {"--stock", stockNames()},
        {"--aspect", {"preset", "square", "portrait45", "portrait34", "story"}},
        {"--frame", {"none", "white", "inner", "instant", "film"}},
    };
    for (const std::string &name : option.names) {
        if (const auto known = byName.find(name); known != byName.end()) {
            return known->second;
        }
    }
    return option.value.find('|') == std::string::npos ? std::vector<std::string>{}
                                                       : alternatives(option.value);
}

bool takesFile(const OptionRow &option)
{
    return option.value == "FILE";
}

bool takesFolder(const OptionRow &option)
{
    return option.value == "DIR";
}

} // namespace tarnovel::manual
