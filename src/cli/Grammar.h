#pragma once

#include <CLI/CLI.hpp>

#include "cli/CollageCommand.h"
#include "cli/ExportCommand.h"
#include "language/AppLanguage.h"

namespace tarnovel::cli {

/// An argument as it was typed, in the bytes of file names.
QString fromArgument(const std::string &argument);

/// What the arguments ask for, as typed: that of the command that was given.
struct Requests {
    ExportRequest framing;
    CollageRequest collage;
    struct {
        QStringList photos;
        bool json = false;
    } inspection;
    struct {
        QString photoCount;
        bool json = false;
    } list;
    bool verbose = false;
    /// Chosen already, for the grammar itself is told in it.
    QString language;
};

/// The grammar of the command line, described in the current language. CLI11 fills the requests by it.
class Grammar {
public:
    explicit Grammar(Requests &requests);

    CLI::App &app() { return m_app; }
    bool wants(const CLI::App *command) const { return command->parsed(); }
    const CLI::App *exporting() const { return m_export; }
    const CLI::App *worker() const { return m_worker; }
    const CLI::App *watching() const { return m_watch; }
    const CLI::App *inspecting() const { return m_inspect; }
    const CLI::App *collage() const { return m_collage; }
    const CLI::App *layouts() const { return m_layouts; }
    const CLI::App *templates() const { return m_templates; }
    const CLI::App *stocks() const { return m_stocks; }
    const CLI::App *fields() const { return m_fields; }
    /// The photos of the command that was given.
    QStringList &photos();

private:
    void settle(CLI::App &app);
    CLI::App &addCommand(const char *name, const Text &description);
    CLI::App *addList(const char *name, const Text &description);
    void addInspect();
    void addExport();
    void addWatch();
    void addWorker();
    void addStyleOptions(CLI::App &command);
    void addResultOptions(CLI::App &command);
    void addListOptions();
    void addNameOptions(CLI::App &command);
    void addRunOptions(CLI::App &command);
    void addCollage();
    void addSpacing();
    void addCells();
    void addFilmEdge();

    Requests &m_requests;
    CLI::App m_app;
    CLI::App *m_export = nullptr;
    CLI::App *m_worker = nullptr;
    CLI::App *m_watch = nullptr;
    CLI::App *m_collage = nullptr;
    CLI::App *m_layouts = nullptr;
    CLI::App *m_inspect = nullptr;
    CLI::App *m_templates = nullptr;
    CLI::App *m_stocks = nullptr;
    CLI::App *m_fields = nullptr;
};

} // namespace tarnovel::cli
