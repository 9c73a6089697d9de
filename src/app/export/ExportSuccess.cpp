#include "app/export/ExportSuccess.h"

#include <QFileInfo>

#include "app/Wording.h"
#include "app/export/ExportPanel.h"
#include "app/export/SuccessSheet.h"
#include "app/kit/Overlay.h"

namespace tarnovel::app {

ExportSuccess::ExportSuccess(QWidget &window, ExportPanel &panel, EditorState &state)
    : m_window(window), m_panel(panel), m_state(state)
{
    connect(&panel, &ExportPanel::exportedToFolder, this, &ExportSuccess::showFolder);
    connect(&panel, &ExportPanel::exportedToLibrary, this, &ExportSuccess::showLibrary);
}

void ExportSuccess::say(const QString &text)
{
    m_state.say(text, Toast::Kind::Done);
}

void ExportSuccess::showFolder()
{
    const FolderExport &run = m_panel.folderExport();
    const std::optional<ExportResult> &result = run.result();
    if (!result || m_sheet) {
        return;
    }
    const qsizetype count = result->files.size();
    m_sheet = showSuccess(&m_window,
                          {[count] { return ExportTexts::exported(count); },
                           result->folder,
                           result->files,
                           result->skipped,
                           {},
                           [&run] { return run.thumbnails(); },
                           result->quote},
                          [this](const QString &text) { say(text); });
    connect(&run, &FolderExport::changed, m_sheet, qOverload<>(&QWidget::update));
    connect(m_sheet, &Overlay::closed, this, [this] { m_panel.dismissResult(); });
}

void ExportSuccess::showLibrary()
{
    const LibraryExport &run = m_panel.libraryExport();
    if (m_sheet || run.saved().isEmpty()) {
        return;
    }
    m_sheet = showSuccess(
        &m_window,
        {[] { return LibraryExport::savedText(); }, QFileInfo(run.saved().first()).absolutePath(),
         run.saved(), run.run().skippedNames(), [] { return Wording::local(LibraryExport::shareText()); },
         [&run] { return run.thumbnails(); }, run.quote()},
        [this](const QString &text) { say(text); });
    connect(&run, &LibraryExport::changed, m_sheet, qOverload<>(&QWidget::update));
}

} // namespace tarnovel::app
