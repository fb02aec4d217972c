// TileGridView_qt.cpp -- the grid of a tile control, as a widget
#include "controls/panels/TileGridView_qt.h"

#include "toolkit/UIColors.h"

#include <QAccessibleWidget>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>

namespace {

constexpr QSize DESIGN_SIZE(320, 320);
constexpr QSize LEAST_SIZE(64, 64);

// Screen readers hear of the tile that keys turn over.
class GridVoice : public QAccessibleWidget {
  public:
    explicit GridVoice(TileGridView *p) : QAccessibleWidget(p, QAccessible::Canvas), pView(p)
    {
    }
    QString text(QAccessible::Text eText) const override
    {
        const QString words = QAccessibleWidget::text(eText);
        if (eText != QAccessible::Name || !TileExists(pView->Tiles(), pView->FocusedTile()))
            return words;
        return words + QStringLiteral(", ") + pView->WordsOf(pView->FocusedTile());
    }
    QStringList actionNames() const override
    {
        return QStringList(toggleAction()) + QAccessibleWidget::actionNames();
    }
    void doAction(const QString &action) override
    {
        if (action == toggleAction())
            pView->Turn(pView->FocusedTile());
        else
            QAccessibleWidget::doAction(action);
    }

  private:
    TileGridView *pView;
};

QAccessibleInterface *MakeVoice(const QString &, QObject *pObject)
{
    auto *pView = dynamic_cast<TileGridView *>(pObject);
    return pView ? new GridVoice(pView) : nullptr;
}

constexpr i32 FAR = CONTROL_TILES_MAX * CONTROL_TILES_MAX;
struct KeyStep {
    int nKey;
    i32 nRows, nColumns;
};
constexpr KeyStep asKeyStep[] = {
    {Qt::Key_Left, 0, -1}, {Qt::Key_Right, 0, 1},   {Qt::Key_Up, -1, 0},
    {Qt::Key_Down, 1, 0},  {Qt::Key_Home, 0, -FAR}, {Qt::Key_End, 0, FAR},
};

} // namespace

TileGridView::TileGridView()
{
    static const bool bHeard = [] {
        QAccessible::installFactory(MakeVoice);
        return true;
    }();
    Q_UNUSED(bHeard)
    setAccessibleName(QStringLiteral("Tiles"));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    UIColorListeners.Add(HearColor, this);
}

TileGridView::~TileGridView()
{
    UIColorListeners.Remove(HearColor, this);
}

void TileGridView::HearColor(u32 iRow, void *pv)
{
    if (iRow == UICOLOR_TILE_ON || iRow == UICOLOR_TILE_OFF)
        static_cast<TileGridView *>(pv)->update();
}

TileGrid TileGridView::Tiles() const
{
    return pfnTiles ? pfnTiles() : TileGrid{};
}

TileAt TileGridView::FocusedTile() const
{
    return StepTile(Tiles(), Focused, 0, 0); // there may be fewer than there were
}

void TileGridView::FocusTile(TileAt tile)
{
    Focused = tile;
    TellFocus();
}

void TileGridView::TellFocus()
{
    update();
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
}

void TileGridView::Turn(TileAt tile)
{
    if (pfnTurn)
        pfnTurn(tile);
    TellFocus();
}

QString TileGridView::WordsOf(TileAt tile) const
{
    return QStringLiteral("row %1, column %2: %3")
        .arg(tile.iRow + 1)
        .arg(tile.iColumn + 1)
        .arg(TileIsOn(Tiles(), tile) ? QStringLiteral("on") : QStringLiteral("off"));
}

QSize TileGridView::sizeHint() const
{
    return DESIGN_SIZE;
}

QSize TileGridView::minimumSizeHint() const
{
    return LEAST_SIZE;
}

QSize TileGridView::DeviceSize() const
{
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

// White in black shows on every colour.
void MarkTile(QPainter *pPainter, const PixelBox &box, qreal f)
{
    const QRectF rect(box.x / f, box.y / f, box.nWidth / f, box.nHeight / f);
    pPainter->setPen(Qt::white);
    pPainter->drawRect(rect.adjusted(1, 1, -1, -1));
    pPainter->setPen(Qt::black);
    pPainter->drawRect(rect.adjusted(2, 2, -2, -2));
}

void TileGridView::paintEvent(QPaintEvent *)
{
    QImage image(DeviceSize(), QImage::Format_RGB32);
    if (image.isNull())
        return;
    const TileGrid grid = Tiles();
    const int w = image.width(), h = image.height();
    const size_t nPixels = static_cast<size_t>(w) * static_cast<size_t>(h);
    const qreal f = devicePixelRatioF();
    PaintTiles(grid, {UIColorTable[UICOLOR_TILE_ON].dwColor, UIColorTable[UICOLOR_TILE_OFF].dwColor},
               {reinterpret_cast<u32 *>(image.bits()), nPixels}, w, h, qMax(1, qFloor(f)));
    image.setDevicePixelRatio(f);
    QPainter painter(this);
    painter.drawImage(QPoint(0, 0), image);
    if (hasFocus() && TileExists(grid, FocusedTile()))
        MarkTile(&painter, TileBox(grid, FocusedTile(), w, h), f);
}

void TileGridView::mousePressEvent(QMouseEvent *pEvent)
{
    const QPointF place = pEvent->position() * devicePixelRatioF();
    const QSize size = DeviceSize();
    TileAt tile;
    if (pEvent->button() != Qt::LeftButton ||
        !HitTile(Tiles(), qFloor(place.x()), qFloor(place.y()), size.width(), size.height(), &tile))
        return;
    FocusTile(tile);
    Turn(tile);
}

void TileGridView::keyPressEvent(QKeyEvent *pEvent)
{
    for (const KeyStep &row : asKeyStep)
        if (row.nKey == pEvent->key())
            return FocusTile(StepTile(Tiles(), FocusedTile(), row.nRows, row.nColumns));
    if (pEvent->key() == Qt::Key_Space)
        return Turn(FocusedTile());
    QWidget::keyPressEvent(pEvent);
}

void TileGridView::focusInEvent(QFocusEvent *)
{
    TellFocus();
}

void TileGridView::focusOutEvent(QFocusEvent *)
{
    update();
}
