#include "app/window/WindowClosing.h"

#include <QTimer>

#include "app/collage/CollageScreen.h"
#include "app/export/ExportPanel.h"
#include "app/handwriting/HandwritingScreen.h"
#include "app/kit/Overlay.h"
#include "app/window/EditorPage.h"
#include "app/window/MainWindow.h"
#include "base/Json.h"
#include "base/Log.h"

namespace tarnovel::app {

WindowClosing::WindowClosing(MainWindow &window, const EditorContext &context)
    : m_window(window), m_context(context)
{
}

bool WindowClosing::mayClose()
{
    return !(askToStopExport() || askToLeaveStudio() || askToStopImport() || askToLoseEdits());
}

/// From within a question's own answer the window is not closed: the question goes first.
void WindowClosing::closeLater()
{
    QTimer::singleShot(0, &m_window, &QWidget::close);
}

/// Whether a question of the end is open already. Whatever else lies over the page makes room for one.
bool WindowClosing::asking()
{
    if (m_question && m_question->isVisible()) {
        return true;
    }
    for (Overlay *overlay : m_window.findChildren<Overlay *>(Qt::FindDirectChildrenOnly)) {
        overlay->close();
    }
    return false;
}

/// No button asked: the question stands where the eye is.
void WindowClosing::centre(Overlay *question)
{
    m_question = question;
    question->anchorAt({(m_window.width() + question->card()->width()) / 2, m_window.height() / 3});
    question->open();
}

bool WindowClosing::askToStopExport()
{
    if (!m_window.page()->exporting()->working() || m_mayStopExport) {
        return false;
    }
    if (!asking()) {
        centre(ask(m_window.currentPage(),
                   {said({"停止导出？", "Stop exporting?", "Arrêter l’export\u202f?"}),
                    m_window.page()->exporting()->savesToLibrary()
                        ? said({"这批照片不会保存到“图片”。", "None of these photos will be in Pictures.",
                                "Aucune de ces photos ne sera dans Images."})
                        : said({"已导出的照片会保留。", "Photos that are already exported stay.",
                                "Les photos déjà exportées restent."}),
                    said({"停止并退出", "Stop and quit", "Arrêter et quitter"})},
                   [this] {
                       m_mayStopExport = true;
                       closeLater();
                   }));
    }
    return true;
}

bool WindowClosing::askToLeaveStudio()
{
    CollageScreen *collage = m_window.collage();
    if (collage && m_window.currentPage() == collage && collage->studio()) {
        collage->askToClose([this] { closeLater(); });
        return true;
    }
    HandwritingScreen *handwriting = m_window.handwriting();
    if (handwriting && m_window.currentPage() == handwriting && handwriting->hasUnsavedInk()) {
        handwriting->leave([this] { closeLater(); });
        return true;
    }
    return false;
}

bool WindowClosing::askToStopImport()
{
    if (!m_context.imports.running()) {
        return false;
    }
    if (!asking()) {
        centre(ask(m_window.currentPage(),
                   {said({"停止导入？", "Stop importing?", "Arrêter l’import\u202f?"}),
                    said({"已导入的照片会保留，其余的不再导入。",
                          "Photos that have come in stay; the rest is left out.",
                          "Les photos déjà importées restent, les autres sont laissées."}),
                    said({"停止并退出", "Stop and quit", "Arrêter et quitter"})},
                   [this] {
                       m_context.imports.endNow();
                       closeLater();
                   }));
    }
    return true;
}

bool WindowClosing::askToLoseEdits()
{
    if (m_mayLoseEdits || m_context.model.flush()) {
        return false;
    }
    m_mayStopExport = false; // the end may be called off
    if (!asking()) {
        centre(askTwoWays(
            m_window.currentPage(),
            {said({"最近的编辑无法保存", "Your last edits could not be saved",
                   "Vos dernières modifications n’ont pas pu être enregistrées"}),
             said({"磁盘可能已满或不可写。腾出空间后重试，否则这些编辑会丢失。",
                   "The disk may be full or read-only. Make room and try again, or these edits are lost.",
                   "Le disque est peut-être plein ou en lecture seule. Libérez de l’espace et réessayez, "
                   "sinon ces modifications seront perdues."}),
             said({"重试", "Try again", "Réessayer"})},
            [this] { closeLater(); }, said({"仍然退出", "Close anyway", "Quitter quand même"}),
            [this] {
                m_mayLoseEdits = true;
                closeLater();
            }));
    }
    return true;
}

void WindowClosing::saveNow(Ending ending)
{
    if (ending == Ending::Certain) {
        m_context.imports.endNow();
    }
    const QString &library = m_context.model.libraryFolder();
    const auto keep = [&library](Drafts::Kind kind, const auto &draft) {
        try {
            const QByteArray document = draft();
            if (!document.isEmpty()) {
                Drafts::keep(library, kind, document);
            }
        } catch (const JsonError &error) {
            qCWarning(logApp) << "a draft was not kept:" << error.what();
        }
    };
    if (const CollageScreen *collage = m_window.collage(); collage && collage->studio()) {
        keep(Drafts::Kind::Collage, [collage] { return collage->studio()->draft(); });
    }
    if (HandwritingScreen *handwriting = m_window.handwriting()) {
        keep(Drafts::Kind::Handwriting, [handwriting] { return handwriting->draft(); });
    }
    if (!m_context.model.flush()) {
        qCWarning(logApp) << "the program ends with edits that could not be saved";
    }
}

void WindowClosing::forgetDraft(Drafts::Kind kind)
{
    Drafts::remove(m_context.model.libraryFolder(), kind);
}

void WindowClosing::offerDrafts()
{
    // What was drawn or arranged belongs to photos that a kept session may still bring back.
    if (!m_context.model.setAside().isEmpty()) {
        return;
    }
    for (const Drafts::Kind kind : {Drafts::Kind::Collage, Drafts::Kind::Handwriting}) {
        if (Drafts::read(m_context.model.libraryFolder(), kind)) {
            offer(kind);
            return;
        }
    }
}

void WindowClosing::offer(Drafts::Kind kind)
{
    const bool collage = kind == Drafts::Kind::Collage;
    centre(askTwoWays(
        m_window.currentPage(),
        {collage ? said({"有一个未完成的拼图", "A collage is unfinished", "Un collage est inachevé"})
                 : said({"有一个未完成的签名", "A signature is unfinished", "Une signature est inachevée"}),
         said({"上次程序退出时已为你保留。", "It was kept when the program had to end.",
               "Conservé à la dernière fermeture du programme."}),
         said({"继续", "Go on", "Continuer"})},
        [this, kind] { resume(kind); }, said({"放弃", "Discard", "Abandonner"}),
        [this, kind] {
            forgetDraft(kind);
            offerDrafts();
        }));
}

void WindowClosing::endVisit(Drafts::Kind kind)
{
    if (m_resumed == kind) {
        m_resumed.reset();
        forgetDraft(kind);
    }
}

void WindowClosing::resume(Drafts::Kind kind)
{
    const QByteArray document = Drafts::read(m_context.model.libraryFolder(), kind).value_or(QByteArray());
    bool resumed = false;
    if (kind == Drafts::Kind::Collage) {
        m_window.showCollage();
        resumed = m_window.collage()->studio()->resume(document);
    } else {
        resumed = m_window.resumeHandwriting(document);
    }
    if (resumed) {
        m_resumed = kind;
        return;
    }
    // Its photos may lie in a session that is still to be brought back: the draft stays.
    m_window.showEditor();
    m_context.state.say(
        localized({"现在无法继续这个草稿，文件已保留。", "The draft cannot be gone on with now. It is kept.",
                   "Impossible de reprendre ce brouillon pour l’instant. Il est conservé."}),
        Toast::Kind::Error);
}

} // namespace tarnovel::app
