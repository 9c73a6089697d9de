#include "app/collage/CollageBoard.h"

#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QResizeEvent>

#include "app/kit/Icons.h"
#include "app/kit/Motion.h"
#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

/// A lifted cell is a little smaller than its place.
constexpr double liftedScale = 0.96;
/// What handles, rings and the read-out take beyond the board.
constexpr int marksReach = 6;

QRectF between(const QRectF &from, const QRectF &to, double progress)
{
    const auto mix = [progress](double a, double b) { return a + (b - a) * progress; };
    return {mix(from.x(), to.x()), mix(from.y(), to.y()), mix(from.width(), to.width()),
            mix(from.height(), to.height())};
}

} // namespace

CollageBoard::CollageBoard(EditorState &state, CollageStudio &studio)
    : ItemView(Arrows::Move), m_state(state), m_studio(studio), m_gestures(studio)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAcceptDrops(true);
    grabGesture(Qt::PinchGesture);
    setAccessibleName(localized({"拼图", "Collage", "Collage"}));
    m_relayout.setStartValue(0.0);
    m_relayout.setEndValue(1.0);
    m_relayout.setDuration(Motion::relayoutMs);
    m_relayout.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_relayout, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&studio, &CollageStudio::changed, this, &CollageBoard::studioChanged);
    connect(&state, &EditorState::pickingChanged, this,
            [this] { showCursor(mapFromGlobal(QCursor::pos())); });
    // A screen reader's press on a cell.
    connect(this, &ItemView::chosen, this, &CollageBoard::moveTo);
    connect(this, &ItemView::menuRequested, this, [this](int index) {
        if (index < cells()) {
            openMenu(index);
        }
    });
}

void CollageBoard::studioChanged(CollageStudio::Changes changes)
{
    if (changes & CollageStudio::DesignChanged) {
        noteLayout();
    }
    if (changes & (CollageStudio::PhaseChanged | CollageStudio::PhotosChanged)) {
        letGo();
    }
    repaintBoard();
}

void CollageBoard::noteLayout()
{
    const CollageDesign &design = m_studio.design();
    QString signature = design.preset.id + u' ' + collageAspectName(design.aspect);
    for (const CollageCell &cell : design.cells) {
        signature += cell.photo.toString();
    }
    if (signature == m_signature) {
        return;
    }
    const bool first = m_signature.isEmpty();
    m_signature = signature;
    update();
    m_relayout.stop();
    if (!first && isVisible() && !Motion::reduced() && !m_shown.cells.empty()) {
        m_before = m_shown;
        m_relayout.start();
    }
}

void CollageBoard::blend(CollagePlan &plan, const CollageDesign &design) const
{
    const double progress = m_relayout.currentValue().toDouble();
    const QRectF frame({}, m_before.size);
    plan.size = between(frame, QRectF({}, QSizeF(plan.size)), progress).size().toSize();
    for (auto &[slot, rect] : plan.layout.cells) {
        const auto before = m_before.cells.find(design.cells.at(slot).photo);
        const double shrunk = rect.width() * 0.04;
        rect = between(before != m_before.cells.end() ? before->second
                                                      : rect.adjusted(shrunk, shrunk, -shrunk, -shrunk),
                       rect, progress);
    }
}

QRectF CollageBoard::boardRect() const
{
    const QSizeF board = m_studio.boardSize();
    const double device = devicePixelRatioF();
    const auto whole = [device](double length) { return qRound(length * device) / device; };
    return {QPointF(whole((width() - board.width()) / 2), whole((height() - board.height()) / 2)), board};
}

void CollageBoard::repaintBoard()
{
    update(boardRect().toAlignedRect().adjusted(-marksReach, -marksReach, marksReach, marksReach));
}

int CollageBoard::count() const
{
    return m_studio.choosing()             ? 0
           : m_studio.design().preset.film ? cells()
                                           : cells() + static_cast<int>(m_studio.layout().dividers.size());
}

QRect CollageBoard::itemRect(int index) const
{
    const QPointF origin = boardRect().topLeft();
    const CollageLayout layout = m_studio.layout();
    if (index < cells()) {
        return layout.cells.at(index).translated(origin).toAlignedRect();
    }
    return BoardMarks::handleRect(layout.dividers.at(index - cells()), origin, BoardMarks::Grasp::Held)
        .toAlignedRect()
        .adjusted(-8, -8, 8, 8);
}

QString CollageBoard::itemName(int index) const
{
    if (index >= cells()) {
        const CollageDivider divider = dividerOf(index);
        return localized({"分隔线，", "Divider, ", "Séparateur, "}) +
               CollageGeometry::ratioText(m_studio.design().node.node(divider.path)->ratio);
    }
    const PhotoItem *photo = m_studio.photo(m_studio.design().cells.at(index).photo);
    return localized({"第 ", "Cell ", "Case "}) + QString::number(index + 1) +
           localized({" 格，共 ", " of ", " sur "}) + QString::number(cells()) +
           localized({" 格，", ", ", ", "}) + (photo ? photo->name : QString());
}

bool CollageBoard::itemChosen(int index) const
{
    return index < cells() && m_studio.selected() == index;
}

int CollageBoard::itemAt(QPoint position) const
{
    const QPointF point = QPointF(position) - boardRect().topLeft();
    if (const std::optional<CollageDivider> divider = m_gestures.dividerAt(point)) {
        const QList<CollageDivider> all = m_studio.layout().dividers;
        const auto place = std::ranges::find(all, divider->path, &CollageDivider::path);
        return cells() + static_cast<int>(place - all.begin());
    }
    return m_studio.choosing() ? -1 : m_studio.cellAt(point).value_or(-1);
}

std::optional<int> CollageBoard::slotAt(QPointF position) const
{
    return m_studio.choosing() ? std::nullopt : m_studio.cellAt(position - boardRect().topLeft());
}

void CollageBoard::resizeEvent(QResizeEvent *event)
{
    const QSizeF room = QSizeF(event->size()) - QSizeF(2 * margin, 2 * margin);
    m_studio.setStage(room.expandedTo({80, 80}), devicePixelRatioF());
    m_relayout.stop();
    update();
    ItemView::resizeEvent(event);
}

void CollageBoard::paintCollage(QPainter &painter, const CollageView &view, const QRectF &frame) const
{
    painter.save();
    painter.translate(frame.topLeft());
    painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
    view.draw(painter);
    painter.restore();
}

void CollageBoard::paintMissing(QPainter &painter, const CollageView &view) const
{
    const QPointF origin = boardRect().topLeft();
    for (const auto &[slot, rect] : m_studio.layout().cells) {
        if (view.images.contains(slot)) {
            continue;
        }
        // The cell shows its paper; only what is wrong with it is said here.
        if (m_studio.unreadable(slot)) {
            Icons::draw(painter, "warn", rect.translated(origin).center() - QPointF(10, 10), 20,
                        Theme::light().danger);
        }
    }
}

void CollageBoard::paintAround(QPainter &painter, const QRectF &frame) const
{
    // What the collage covers need not be painted first: that would cost as much as the collage itself.
    const QRegion around = m_dirty - QRegion(frame.toAlignedRect().adjusted(1, 1, -1, -1));
    if (around.isEmpty()) {
        return;
    }
    painter.save();
    painter.setClipRegion(around);
    painter.fillRect(rect(), theme().canvas);
    drawShadow(painter, frame, 0, Elevation::Frame);
    painter.restore();
}

void CollageBoard::paintGround(QPainter &painter)
{
    if (m_studio.choosing() || cells() == 0) {
        painter.fillRect(rect(), theme().canvas);
        return;
    }
    if (devicePixelRatioF() != m_studio.devicePixelRatio()) {
        m_studio.setStage(QSizeF(size()) - QSizeF(2 * margin, 2 * margin), devicePixelRatioF());
    }
    CollageView view = m_studio.board();
    QRectF frame = boardRect();
    const bool moving = m_relayout.state() == QAbstractAnimation::Running;
    if (moving) {
        blend(view.plan, view.design);
        const QSizeF size = QSizeF(view.plan.size) / devicePixelRatioF();
        frame = QRectF(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size);
    }
    m_shown = {QSizeF(view.plan.size), {}};
    for (const auto &[slot, rect] : view.plan.layout.cells) {
        m_shown.cells[view.design.cells.at(slot).photo] = rect;
    }
    paintAround(painter, frame);
    paintCollage(painter, view, frame);
    const double pixel = 1 / devicePixelRatioF();
    Paint::outline(painter, frame.adjusted(-pixel, -pixel, pixel, pixel), 0, theme().rim, pixel);
    if (!moving) {
        paintMissing(painter, view);
    }
}

void CollageBoard::paintItem(QPainter &painter, int index, const State &state)
{
    if (m_relayout.state() == QAbstractAnimation::Running) {
        return;
    }
    if (index < cells()) {
        if (state.focused) {
            paintRing(painter, index, BoardMarks::Ring::Focused);
        } else if (state.chosen && !lifting()) {
            paintRing(painter, index, BoardMarks::Ring::Chosen);
        }
        return;
    }
    const QPointF origin = boardRect().topLeft();
    const CollageLayout layout = m_studio.layout();
    const CollageDivider &divider = layout.dividers.at(index - cells());
    const bool grasped = m_gestures.activeDivider() == divider.id();
    if (grasped) {
        BoardMarks::paintHeldLine(painter, divider, origin);
    }
    BoardMarks::paintHandle(painter, divider, origin,
                            grasped || state.focused              ? BoardMarks::Grasp::Held
                            : state.hovered && !held<CellPress>() ? BoardMarks::Grasp::Near
                                                                  : BoardMarks::Grasp::Rest);
}

void CollageBoard::paintRing(QPainter &painter, int slot, BoardMarks::Ring ring) const
{
    const QRectF board = boardRect();
    const CollageDesign &design = m_studio.design();
    const double radius = design.preset.film ? 0 : design.radius * std::min(board.width(), board.height());
    BoardMarks::paintRing(painter, m_studio.layout().cells.at(slot).translated(board.topLeft()), radius,
                          ring);
}

void CollageBoard::paintEvent(QPaintEvent *event)
{
    m_dirty = event->region();
    ItemView::paintEvent(event);
    QPainter painter(this);
    if (m_target) {
        paintRing(painter, *m_target, BoardMarks::Ring::Target);
    }
    if (const Lift *lift = held<Lift>()) {
        paintLifted(painter, *lift);
    }
    if (!m_studio.choosing()) {
        paintReadout(painter);
    }
}

void CollageBoard::paintLifted(QPainter &painter, const Lift &lift) const
{
    const QRectF cell = m_studio.layout().cells.at(lift.slot).translated(boardRect().topLeft());
    QColor faded = theme().canvas;
    faded.setAlphaF(0.64F);
    painter.fillRect(cell, faded);
    const QRectF picture(lift.at - lift.grip * liftedScale, cell.size() * liftedScale);
    drawShadow(painter, picture, 0, Elevation::Sheet);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(picture, lift.picture, QRectF(lift.picture.rect()));
    Paint::outline(painter, picture, 0, theme().rim);
}

void CollageBoard::paintReadout(QPainter &painter) const
{
    const std::optional<QString> &active = m_gestures.activeDivider();
    const QString text = m_gestures.ratioLabel().value_or(m_nudged);
    const bool nudged = !active && cursor() >= cells() && cursor() < count();
    if (text.isEmpty() || (!active && !nudged)) {
        return;
    }
    const QString id = active ? *active : dividerOf(cursor()).id();
    for (const CollageDivider &divider : m_studio.layout().dividers) {
        if (divider.id() == id) {
            BoardMarks::paintChip(
                painter, BoardMarks::handleRect(divider, boardRect().topLeft(), BoardMarks::Grasp::Held),
                text, active && m_gestures.snapped(), QRectF(rect()).adjusted(4, 4, -4, -4));
        }
    }
}

void CollageBoard::lift(const CellPress &press)
{
    const QRectF frame = boardRect();
    const QRectF cell = m_studio.layout().cells.at(press.slot);
    QPixmap picture((cell.size() * devicePixelRatioF()).toSize().expandedTo({1, 1}));
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(m_studio.design().background);
    QPainter painter(&picture);
    paintCollage(painter, m_studio.board(), QRectF(-cell.topLeft(), frame.size()));
    painter.end();
    picture.setDevicePixelRatio(1);
    m_hand = Lift{press.slot, picture, press.at - frame.topLeft() - cell.topLeft(), press.at};
    setCursor(Qt::ClosedHandCursor);
    update();
}

} // namespace tarnovel::app
