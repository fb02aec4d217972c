// DarkBars_qt.cpp -- paints sliders, scroll bars, progress bars, splitters, tabs and tool bars
#include "toolkit/DarkPaint_qt.h"
#include "toolkit/DarkPieces_qt.h"
#include "toolkit/Meters_qt.h"
#include "toolkit/UIColors.h"

#include <QPainter>
#include <QSlider>
#include <QStyle>
#include <QStyleOption>
#include <QTabBar>

#include <algorithm>

namespace {

constexpr int TICK_LENGTH = 4;
constexpr int GROOVE_WIDTH = 4;
constexpr int TICKS_MAX = 400; // more are a solid line

QRect Across(bool bHorizontal, int along, int across, int nAlong, int nAcross)
{
    return bHorizontal ? QRect(along, across, nAlong, nAcross) : QRect(across, along, nAcross, nAlong);
}

int TickStep(const QStyleOptionSlider *pSlider)
{
    const int nStep = pSlider->tickInterval > 0 ? pSlider->tickInterval : pSlider->pageStep;
    const i64 nSpan = i64{pSlider->maximum} - pSlider->minimum;
    return nSpan / std::max(nStep, 1) > TICKS_MAX ? 0 : std::max(nStep, 1);
}

void DrawTickRow(const DarkPiece &piece, const QStyleOptionSlider *pSlider, int across, const QColor &color)
{
    const bool bHorizontal = pSlider->orientation == Qt::Horizontal;
    const int nStep = TickStep(pSlider);
    const int nHandle = piece.pStyle->pixelMetric(QStyle::PM_SliderLength, pSlider, piece.pWidget);
    const int nSpan = (bHorizontal ? pSlider->rect.width() : pSlider->rect.height()) - nHandle;
    const int nStart = bHorizontal ? pSlider->rect.left() : pSlider->rect.top();
    for (i64 v = pSlider->minimum; nStep && v <= pSlider->maximum; v += nStep) {
        const int n = QStyle::sliderPositionFromValue(pSlider->minimum, pSlider->maximum, static_cast<int>(v), nSpan,
                                                      pSlider->upsideDown);
        DrawOutlinedRect(piece.pPainter, Across(bHorizontal, nStart + n + nHandle / 2, across, 1, TICK_LENGTH), {},
                         color);
    }
}

void DrawTicks(const DarkPiece &piece, const QStyleOptionSlider *pSlider, const ControlState &state)
{
    const bool bHorizontal = pSlider->orientation == Qt::Horizontal;
    const QColor color = ColorOf(state.bEnabled ? Look().dwLine : Look().dwFaint);
    const QRect &box = pSlider->rect;
    if (pSlider->tickPosition & QSlider::TicksAbove)
        DrawTickRow(piece, pSlider, bHorizontal ? box.top() : box.left(), color);
    if (pSlider->tickPosition & QSlider::TicksBelow)
        DrawTickRow(piece, pSlider, (bHorizontal ? box.bottom() : box.right()) - TICK_LENGTH + 1, color);
}

// The groove is lit from its low end to the handle.
void DrawGroove(const DarkPiece &piece, const QStyleOptionSlider *pSlider, const ControlState &state,
                const QRect &handle)
{
    const QRect area = piece.pStyle->subControlRect(QStyle::CC_Slider, pSlider, QStyle::SC_SliderGroove, piece.pWidget);
    const bool bHorizontal = pSlider->orientation == Qt::Horizontal;
    const QPoint middle = handle.center();
    const QRect groove = bHorizontal
                             ? QRect(area.left(), middle.y() - GROOVE_WIDTH / 2 + 1, area.width(), GROOVE_WIDTH)
                             : QRect(middle.x() - GROOVE_WIDTH / 2 + 1, area.top(), GROOVE_WIDTH, area.height());
    QRect lit = groove;
    if (bHorizontal && pSlider->upsideDown)
        lit.setLeft(middle.x());
    else if (bHorizontal)
        lit.setRight(middle.x());
    else if (pSlider->upsideDown)
        lit.setTop(middle.y());
    else
        lit.setBottom(middle.y());
    DrawOutlinedRect(piece.pPainter, groove, ColorOf(Look().dwFaint), ColorOf(Look().dwButton));
    if (state.bEnabled)
        DrawOutlinedRect(piece.pPainter, lit, {}, ColorOf(Look().dwLine));
}

void DrawScrollButton(const DarkPiece &piece, const QStyleOptionSlider *pBar, QStyle::SubControl ePart,
                      Qt::ArrowType eArrow, bool bAtEnd)
{
    const QRect box = piece.pStyle->subControlRect(QStyle::CC_ScrollBar, pBar, ePart, piece.pWidget);
    ControlState state = StateOf(pBar);
    state.bEnabled = state.bEnabled && !bAtEnd;
    const bool bActive = state.bEnabled && pBar->activeSubControls & ePart;
    if (bActive && (state.bHover || state.bDown))
        DrawOutlinedRect(piece.pPainter, box, {}, ColorOf(state.bDown ? Look().dwButtonDown : Look().dwButtonHover));
    DrawArrow(piece.pPainter, box, eArrow, ColorOf(state.bEnabled ? Look().dwLineHover : Look().dwFaint));
}

void DrawScrollHandle(const DarkPiece &piece, const QStyleOptionSlider *pBar)
{
    const QRect box =
        piece.pStyle->subControlRect(QStyle::CC_ScrollBar, pBar, QStyle::SC_ScrollBarSlider, piece.pWidget);
    const ControlState state = StateOf(pBar);
    const bool bActive = pBar->activeSubControls & QStyle::SC_ScrollBarSlider;
    const bool bHorizontal = pBar->orientation == Qt::Horizontal;
    const QRect handle = bHorizontal ? box.adjusted(1, 3, -1, -3) : box.adjusted(3, 1, -3, -1);
    const u32 dwFill = bActive && state.bDown    ? Look().dwLineHover
                       : bActive && state.bHover ? Look().dwLine
                                                 : Look().dwButtonDown;
    const QColor outline = state.bFocus ? OutlineOf(state) : ColorOf(state.bEnabled ? Look().dwLine : Look().dwFaint);
    DrawOutlinedRect(piece.pPainter, handle, outline, ColorOf(state.bEnabled ? dwFill : Look().dwButton));
    if (state.bFocus)
        DrawFocusMark(piece.pPainter, handle.adjusted(1, 1, -1, -1));
}

// Paints upright what then stands sideways, so that a bar is described once.
void TurnUpright(QPainter *pPainter, QRect *pBox, bool bBottomToTop)
{
    const QRect box = *pBox;
    if (bBottomToTop) {
        pPainter->translate(box.left(), box.top() + box.height());
        pPainter->rotate(-90);
    } else {
        pPainter->translate(box.left() + box.width(), box.top());
        pPainter->rotate(90);
    }
    *pBox = QRect(0, 0, box.height(), box.width());
}

bool IsUpright(const QStyleOptionProgressBar *pBar)
{
    return pBar->state & QStyle::State_Horizontal;
}

f32 ProgressLevel(const QStyleOptionProgressBar *pBar)
{
    const f64 fSpan = static_cast<f64>(pBar->maximum) - pBar->minimum;
    return fSpan > 0 ? static_cast<f32>((static_cast<f64>(pBar->progress) - pBar->minimum) / fSpan) : 0.0f;
}

// Readable over the light end of the bar as over its dark rest.
void DrawHaloText(QPainter *pPainter, const QRect &box, const QString &text)
{
    pPainter->setPen(Qt::black);
    for (const QPoint &step : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1), QPoint(1, 1)})
        pPainter->drawText(box.translated(step), Qt::AlignCenter | Qt::TextSingleLine, text);
    pPainter->setPen(Qt::white);
    pPainter->drawText(box, Qt::AlignCenter | Qt::TextSingleLine, text);
}

enum class TabSide { Top, Bottom, Left, Right };

TabSide SideOf(QTabBar::Shape eShape)
{
    switch (eShape) {
    case QTabBar::RoundedSouth:
    case QTabBar::TriangularSouth:
        return TabSide::Bottom;
    case QTabBar::RoundedWest:
    case QTabBar::TriangularWest:
        return TabSide::Left;
    case QTabBar::RoundedEast:
    case QTabBar::TriangularEast:
        return TabSide::Right;
    default:
        return TabSide::Top;
    }
}

// The strip of nWidth along a side of the box, nInset from it.
QRect StripAt(const QRect &box, TabSide eSide, int nWidth)
{
    switch (eSide) {
    case TabSide::Bottom:
        return QRect(box.left(), box.bottom() - nWidth + 1, box.width(), nWidth);
    case TabSide::Left:
        return QRect(box.left(), box.top(), nWidth, box.height());
    case TabSide::Right:
        return QRect(box.right() - nWidth + 1, box.top(), nWidth, box.height());
    default:
        return QRect(box.left(), box.top(), box.width(), nWidth);
    }
}

TabSide Opposite(TabSide eSide)
{
    static constexpr TabSide aeOther[] = {TabSide::Bottom, TabSide::Top, TabSide::Right, TabSide::Left};
    return aeOther[static_cast<int>(eSide)];
}

} // namespace

void DrawSlider(const DarkPiece &piece)
{
    const auto *pSlider = qstyleoption_cast<const QStyleOptionSlider *>(piece.pOption);
    if (!pSlider)
        return;
    const ControlState state = StateOf(pSlider);
    const QRect handle =
        piece.pStyle->subControlRect(QStyle::CC_Slider, pSlider, QStyle::SC_SliderHandle, piece.pWidget);
    if (pSlider->subControls & QStyle::SC_SliderTickmarks)
        DrawTicks(piece, pSlider, state);
    DrawGroove(piece, pSlider, state, handle);
    ControlState grip = state;
    grip.bHover = state.bHover && pSlider->activeSubControls & QStyle::SC_SliderHandle;
    grip.bDown = state.bDown && pSlider->activeSubControls & QStyle::SC_SliderHandle;
    const bool bHorizontal = pSlider->orientation == Qt::Horizontal;
    const QRect shown = (bHorizontal ? handle.adjusted(2, 0, -1, 0) : handle.adjusted(0, 2, 0, -1)) & pSlider->rect;
    DrawOutlinedRect(piece.pPainter, shown, OutlineOf(grip),
                     state.bEnabled ? ColorOf(grip.bDown    ? Look().dwLineHover
                                              : grip.bHover ? Look().dwLine
                                                            : Look().dwButtonDown)
                                    : ColorOf(Look().dwButton));
    if (state.bFocus)
        DrawFocusMark(piece.pPainter, shown.adjusted(1, 1, -1, -1));
}

void DrawScrollBar(const DarkPiece &piece)
{
    const auto *pBar = qstyleoption_cast<const QStyleOptionSlider *>(piece.pOption);
    if (!pBar)
        return;
    DrawOutlinedRect(piece.pPainter, pBar->rect, {}, ColorOf(Look().dwButton));
    const bool bHorizontal = pBar->orientation == Qt::Horizontal;
    const bool bMirrored = bHorizontal && pBar->direction == Qt::RightToLeft;
    const bool bAtMinimum = pBar->sliderValue <= pBar->minimum;
    const bool bAtMaximum = pBar->sliderValue >= pBar->maximum;
    const Qt::ArrowType eSub = bMirrored ? Qt::RightArrow : bHorizontal ? Qt::LeftArrow : Qt::UpArrow;
    const Qt::ArrowType eAdd = bMirrored ? Qt::LeftArrow : bHorizontal ? Qt::RightArrow : Qt::DownArrow;
    DrawScrollButton(piece, pBar, QStyle::SC_ScrollBarSubLine, eSub, bAtMinimum);
    DrawScrollButton(piece, pBar, QStyle::SC_ScrollBarAddLine, eAdd, bAtMaximum);
    if (pBar->maximum > pBar->minimum)
        DrawScrollHandle(piece, pBar);
}

void DrawScrollCorner(const DarkPiece &piece)
{
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, {}, ColorOf(Look().dwButton));
}

void DrawProgressGroove(const DarkPiece &piece)
{
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, ColorOf(Look().dwLine), Qt::black);
}

void DrawProgressContents(const DarkPiece &piece)
{
    const auto *pBar = qstyleoption_cast<const QStyleOptionProgressBar *>(piece.pOption);
    if (!pBar)
        return;
    QRect box = pBar->rect.adjusted(1, 1, -1, -1);
    piece.pPainter->save();
    if (!IsUpright(pBar)) {
        TurnUpright(piece.pPainter, &box, !pBar->invertedAppearance);
    } else if ((pBar->direction == Qt::RightToLeft) != pBar->invertedAppearance) {
        piece.pPainter->translate(2 * box.left() + box.width(), 0);
        piece.pPainter->scale(-1, 1);
    }
    DrawProgressBar(piece.pPainter, box, ProgressLevel(pBar), UIColorTable[UICOLOR_METER_LOW].dwColor,
                    UIColorTable[UICOLOR_METER_HIGH].dwColor);
    piece.pPainter->restore();
}

void DrawProgressLabel(const DarkPiece &piece)
{
    const auto *pBar = qstyleoption_cast<const QStyleOptionProgressBar *>(piece.pOption);
    if (!pBar || !pBar->textVisible)
        return;
    QRect box = pBar->rect;
    piece.pPainter->save();
    if (!IsUpright(pBar))
        TurnUpright(piece.pPainter, &box, pBar->bottomToTop);
    DrawHaloText(piece.pPainter, box, pBar->text);
    piece.pPainter->restore();
}

void DrawSplitter(const DarkPiece &piece)
{
    const ControlState state = StateOf(piece.pOption);
    const bool bUpright = piece.pOption->state & QStyle::State_Horizontal;
    const QPoint middle = piece.pOption->rect.center();
    if (state.bHover || state.bDown)
        DrawOutlinedRect(piece.pPainter, piece.pOption->rect, {}, ColorOf(Look().dwButtonHover));
    for (int n = -2; n <= 2; n++)
        DrawOutlinedRect(piece.pPainter,
                         bUpright ? QRect(middle.x(), middle.y() + 5 * n, 2, 2)
                                  : QRect(middle.x() + 5 * n, middle.y(), 2, 2),
                         {}, OutlineOf({state.bEnabled, state.bHover, false, false, false}));
}

void DrawSizeGrip(const DarkPiece &piece)
{
    const QRect box = piece.pOption->rect;
    for (int nRow = 0; nRow < 3; nRow++)
        for (int n = 0; n <= nRow; n++)
            DrawOutlinedRect(piece.pPainter, QRect(box.right() - 3 - 4 * n, box.bottom() - 11 + 4 * nRow, 2, 2), {},
                             ColorOf(Look().dwLine));
}

// The selected tab opens into its page: no line stands between them.
void DrawTabShape(const DarkPiece &piece)
{
    const auto *pTab = qstyleoption_cast<const QStyleOptionTab *>(piece.pOption);
    if (!pTab)
        return;
    const ControlState state = StateOf(pTab);
    const TabSide eOuter = SideOf(pTab->shape);
    const bool bSelected = pTab->state & QStyle::State_Selected;
    const LookShades &look = Look();
    QRect box = pTab->rect;
    if (!bSelected) {
        const QRect gap = StripAt(box, eOuter, 2);
        box = eOuter == TabSide::Top      ? box.adjusted(0, gap.height(), 0, 0)
              : eOuter == TabSide::Bottom ? box.adjusted(0, 0, 0, -gap.height())
              : eOuter == TabSide::Left   ? box.adjusted(gap.width(), 0, 0, 0)
                                          : box.adjusted(0, 0, -gap.width(), 0);
    }
    const u32 dwFill = bSelected ? look.dwWindow : state.bHover ? look.dwButtonHover : look.dwButton;
    DrawOutlinedRect(piece.pPainter, box, ColorOf(state.bEnabled ? look.dwLine : look.dwFaint), ColorOf(dwFill));
    if (!bSelected)
        return;
    DrawOutlinedRect(piece.pPainter, StripAt(box, eOuter, 2), {}, InkOf(state));
    const bool bLevel = eOuter == TabSide::Top || eOuter == TabSide::Bottom;
    const QRect open = bLevel ? box.adjusted(1, 0, -1, 0) : box.adjusted(0, 1, 0, -1);
    DrawOutlinedRect(piece.pPainter, StripAt(open, Opposite(eOuter), 2), {}, ColorOf(look.dwWindow));
}

void DrawTabPage(const DarkPiece &piece)
{
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, ColorOf(Look().dwLine),
                     piece.pOption->palette.color(QPalette::Window));
}

void DrawTabBase(const DarkPiece &piece)
{
    const auto *pBase = qstyleoption_cast<const QStyleOptionTabBarBase *>(piece.pOption);
    if (pBase)
        DrawOutlinedRect(piece.pPainter, StripAt(pBase->rect, Opposite(SideOf(pBase->shape)), 1), {},
                         ColorOf(Look().dwLine));
}

void DrawToolBar(const DarkPiece &piece)
{
    DrawOutlinedRect(piece.pPainter, piece.pOption->rect, {}, piece.pOption->palette.color(QPalette::Window));
}
