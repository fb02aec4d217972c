// SizingBand_qt.cpp -- the thin band inside a window's left, right and lower edge by which it is sized
#include "toolkit/SizingBand_qt.h"

#include "toolkit/DarkPaint_qt.h"
#include "toolkit/DialogScaling.h"
#include "toolkit/Meters.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

#include <algorithm>

namespace {

constexpr int MARK_FROM = 12, MARK = 6; // from the corner, and along the band

struct EdgeRow {
    SizingEdge eEdge;
    Qt::Edges edges;
    Qt::CursorShape eCursor;
};
const EdgeRow asEdge[] = {
    {SizingEdge::None, {}, Qt::ArrowCursor},
    {SizingEdge::Left, Qt::LeftEdge, Qt::SizeHorCursor},
    {SizingEdge::Right, Qt::RightEdge, Qt::SizeHorCursor},
    {SizingEdge::Top, Qt::TopEdge, Qt::SizeVerCursor},
    {SizingEdge::Bottom, Qt::BottomEdge, Qt::SizeVerCursor},
    {SizingEdge::TopLeft, Qt::TopEdge | Qt::LeftEdge, Qt::SizeFDiagCursor},
    {SizingEdge::TopRight, Qt::TopEdge | Qt::RightEdge, Qt::SizeBDiagCursor},
    {SizingEdge::BottomLeft, Qt::BottomEdge | Qt::LeftEdge, Qt::SizeBDiagCursor},
    {SizingEdge::BottomRight, Qt::BottomEdge | Qt::RightEdge, Qt::SizeFDiagCursor},
};

Qt::CursorShape CursorOf(Qt::Edges edges)
{
    return std::ranges::find(asEdge, edges, &EdgeRow::edges)->eCursor;
}

// Edges that this window can move now.
Qt::Edges MovableEdges(const QWidget *pWindow)
{
    Qt::Edges edges;
    if (pWindow->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))
        return edges;
    if (pWindow->minimumWidth() < pWindow->maximumWidth())
        edges |= Qt::LeftEdge | Qt::RightEdge;
    if (pWindow->minimumHeight() < pWindow->maximumHeight())
        edges |= Qt::TopEdge | Qt::BottomEdge;
    return edges;
}

// One of the three pieces.
class BandPiece : public QWidget {
  public:
    BandPiece(QWidget *pWindow, Qt::Edge e) : QWidget(pWindow), eSide(e)
    {
        setMouseTracking(true);
        setAttribute(Qt::WA_OpaquePaintEvent);
    }
    void Place(int y)
    {
        yTop = y;
        const QSize all = window()->size();
        const int ySide = all.height() - SIZING_BAND;
        if (eSide == Qt::BottomEdge)
            setGeometry(0, ySide, all.width(), SIZING_BAND);
        else
            setGeometry(eSide == Qt::LeftEdge ? 0 : all.width() - SIZING_BAND, yTop, SIZING_BAND,
                        std::max(ySide - yTop, 0));
        raise();
    }

  protected:
    void mouseMoveEvent(QMouseEvent *pEvent) override
    {
        setCursor(CursorOf(EdgesAt(pEvent->position().toPoint())));
    }
    void mousePressEvent(QMouseEvent *pEvent) override
    {
        const Qt::Edges edges = EdgesAt(pEvent->position().toPoint());
        if (pEvent->button() != Qt::LeftButton || !edges || !window()->windowHandle())
            return;
        SizingBandListeners.Tell(window());
        window()->windowHandle()->startSystemResize(edges);
    }
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Border());
        const int yMark = height() + SIZING_BAND - MARK_FROM - MARK;
        if (eSide != Qt::BottomEdge)
            return PaintMark(&painter, QRect(0, yMark, width(), MARK));
        PaintMark(&painter, QRect(MARK_FROM, 0, MARK, height()));
        PaintMark(&painter, QRect(width() - MARK_FROM - MARK, 0, MARK, height()));
    }

  private:
    // The area within the band begins where its sides do.
    Qt::Edges EdgesAt(const QPoint &here) const
    {
        const QPoint at = mapTo(window(), here) - QPoint(SIZING_BAND, yTop);
        const SizingEdge eHit =
            HitSizingBand(at.x(), at.y(), window()->width() - 2 * SIZING_BAND, window()->height() - yTop - SIZING_BAND);
        return std::ranges::find(asEdge, eHit, &EdgeRow::eEdge)->edges & MovableEdges(window());
    }
    QColor Border() const
    {
        return palette().color(QPalette::Dark);
    }
    // Between two lines across the band, a piece that is darker than the border.
    void PaintMark(QPainter *pPainter, const QRect &mark) const
    {
        const bool bAcross = eSide != Qt::BottomEdge;
        pPainter->fillRect(mark, Qt::black);
        pPainter->fillRect(bAcross ? mark.adjusted(0, 1, 0, -1) : mark.adjusted(1, 0, -1, 0),
                           ColorOf(ScaleColor(ColorFrom(Border()), 0.75f)));
    }

    const Qt::Edge eSide;
    int yTop = 0;
};

} // namespace

Listeners<void(QWidget *pWindow)> SizingBandListeners;

void MakeSizingBand(QWidget *pWindow)
{
    for (const Qt::Edge eSide : {Qt::LeftEdge, Qt::RightEdge, Qt::BottomEdge})
        (new BandPiece(pWindow, eSide))->show();
}

bool IsSizingBand(const QWidget *pWidget)
{
    return dynamic_cast<const BandPiece *>(pWidget) != nullptr;
}

void PlaceSizingBand(QWidget *pWindow, int yTop)
{
    for (QObject *pChild : QObjectList(pWindow->children()))
        if (auto *pPiece = dynamic_cast<BandPiece *>(pChild))
            pPiece->Place(yTop);
}
