#include "app/collage/CellMenu.h"

#include <QBoxLayout>

#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"
#include "collage/CollageStudio.h"
#include "collage/SelectedCell.h"

namespace tarnovel::app {

namespace {

constexpr int menuWidth = 284;
constexpr int padding = 12;

Button *addRow(Overlay *menu, Button::Kind kind, Phrase phrase, const char *icon,
               const std::function<void()> &done)
{
    auto *row = new Button(kind, std::move(phrase), icon);
    row->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    menu->column()->addWidget(row);
    QObject::connect(row, &QPushButton::clicked, menu, [menu, done] {
        menu->close();
        done();
    });
    return row;
}

} // namespace

void openCellMenu(QWidget *board, CollageStudio &studio, int slot, QPoint at,
                  const std::function<void()> &replaceAsked)
{
    const Phrase title = [slot] {
        return localized({"第 ", "Cell ", "Case "}) + QString::number(slot + 1) + localized({" 格", "", ""});
    };
    auto *menu = new Overlay(Overlay::Kind::Popover, board, title);
    menu->column()->setContentsMargins(padding, padding, padding, padding);
    menu->column()->setSpacing(4);
    menu->column()->addWidget(new Label(Type::Heading, title));
    menu->column()->addSpacing(4);
    menu->column()->addWidget(new Label(Type::Label,
                                        said({"与以下格子交换", "Swap with cell", "Échanger avec la case"}),
                                        Label::Tone::Secondary));
    auto *others = new QHBoxLayout;
    others->setSpacing(4);
    for (int other = 0; other < studio.design().cells.size(); ++other) {
        if (other == slot) {
            continue;
        }
        auto *place = new Button(Button::Kind::Secondary, [other] { return QString::number(other + 1); });
        place->setHeight(28);
        place->setFixedWidth(28);
        place->setAccessibleDescription(
            localized({"与以下格子交换", "Swap with cell", "Échanger avec la case"}) + u' ' +
            QString::number(other + 1));
        others->addWidget(place);
        QObject::connect(place, &QPushButton::clicked, menu, [menu, &studio, slot, other] {
            menu->close();
            studio.swapCells(slot, other);
        });
    }
    others->addStretch();
    menu->column()->addLayout(others);
    menu->column()->addSpacing(8);
    addRow(menu, Button::Kind::Secondary, said({"更换照片…", "Replace photo…", "Remplacer la photo…"}),
           "image", replaceAsked);
    addRow(menu, Button::Kind::Secondary, said({"照片居中", "Center photo", "Centrer la photo"}), "placement",
           [&studio] { SelectedCell(studio).centerPhoto(); });
    Button *remove =
        addRow(menu, Button::Kind::DangerGhost, said({"移除照片", "Remove photo", "Retirer la photo"}),
               "trash", [&studio, slot] { studio.toggle(studio.design().cells.at(slot).photo); });
    remove->setEnabled(studio.total() > CollageEdits::fewestPhotos);
    menu->setCardSize({menuWidth, 0});
    // The studio goes with the board.
    QObject::connect(board, &QObject::destroyed, menu, &Overlay::close);
    menu->anchorAt(board->mapTo(board->window(), at));
    menu->open();
}

} // namespace tarnovel::app
