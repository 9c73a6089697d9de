#include "app/window/EditorActions.h"

#include <QAction>
#include <QWidget>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

struct Row {
    Text label;
    const char *key;
};

constexpr std::array<Row, static_cast<size_t>(Act::Count)> rows = {{
    {{"添加照片", "Add photos", "Ajouter"}, "Ctrl+O"},
    {{"导出", "Export", "Exporter"}, "Ctrl+E"},
    {{"撤销", "Undo", "Annuler"}, "Ctrl+Z"},
    {{"重做", "Redo", "Rétablir"}, "Ctrl+Shift+Z"},
    {{"应用到全部", "Apply to all", "Appliquer à tout"}, "Ctrl+Return"},
    {{"保存我的风格", "Save my style", "Enregistrer mon style"}, "Ctrl+S"},
    {{"拼图", "Collage", "Collage"}, "Ctrl+L"},
    {{"套图预览", "Preview set", "Aperçu de la série"}, "Ctrl+P"},
    {{"管理照片", "Manage photos", "Gérer les photos"}, "Ctrl+M"},
    {{"使用指南", "Guide", "Guide"}, "F1"},
    {{"设置", "Settings", "Réglages"}, "Ctrl+,"},
    {{"粘贴照片", "Paste photos", "Coller des photos"}, "Ctrl+V"},
    {{"关闭窗口", "Close window", "Fermer la fenêtre"}, "Ctrl+W"},
    {{"退出", "Quit", "Quitter"}, "Ctrl+Q"},
    {{"全屏", "Full screen", "Plein écran"}, "F11"},
}};

} // namespace

EditorActions::EditorActions(QWidget *window)
{
    for (size_t i = 0; i < rows.size(); ++i) {
        m_actions.at(i) = new QAction(window);
        m_actions.at(i)->setShortcut(QKeySequence(QString::fromLatin1(rows.at(i).key)));
        window->addAction(m_actions.at(i));
    }
    retranslate();
}

void EditorActions::connectTo(Act act, const std::function<void()> &done)
{
    connect(action(act), &QAction::triggered, this, [this, done] {
        if (!m_blocked()) {
            done();
        }
    });
}

void EditorActions::connectAlways(Act act, const std::function<void()> &done)
{
    connect(action(act), &QAction::triggered, this, done);
}

void EditorActions::setEnabled(Act act, bool enabled)
{
    action(act)->setEnabled(enabled);
}

void EditorActions::retranslate()
{
    for (size_t i = 0; i < rows.size(); ++i) {
        m_actions.at(i)->setText(localized(rows.at(i).label));
    }
}

} // namespace tarnovel::app
