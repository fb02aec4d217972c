// OverlayPainter_qt.cpp -- the overlays' texts as pictures that are ready to be blended over a frame
#include "output/OverlayPainter_qt.h"

#include "toolkit/UIColors.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetrics>
#include <QPainter>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QtMath>

#include <algorithm>
#include <cstring>

namespace {

constexpr int FONT_PIXELS = 12;
constexpr int TAB_PIXELS = 32;         // of a text: 16 dialog units
constexpr int MEASURE_TAB_LETTERS = 8; // of the size: a tab counts as so many letters
constexpr double PIXELS_PER_HALF_POINT = 96.0 / 72.0 / 2.0;

QFont OverlayFont()
{
    QFont font(QStringList{QStringLiteral("Arial"), QStringLiteral("Liberation Sans"), QStringLiteral("Nimbus Sans"),
                           QStringLiteral("Helvetica")});
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(FONT_PIXELS);
    font.setWeight(QFont::Bold);
    return font;
}

QColor ColorOf(u32 dwColor)
{
    return QColor(dwColor & 0xFF, (dwColor >> 8) & 0xFF, (dwColor >> 16) & 0xFF);
}

QString TextOfRun(const RichRun &run)
{
    return QString::fromUtf16(run.text.data(), static_cast<qsizetype>(run.text.size()));
}

QTextCharFormat FormatOf(const RichRun &run)
{
    QTextCharFormat format;
    if (run.nHalfPoints) {
        format.setProperty(QTextFormat::FontPixelSize, qRound(run.nHalfPoints * PIXELS_PER_HALF_POINT));
        format.setFontWeight(run.bBold ? QFont::Bold : QFont::Normal);
    }
    format.setFontItalic(run.bItalic);
    format.setFontUnderline(run.bUnderline || !run.link.empty());
    if (run.bColor)
        format.setForeground(ColorOf(run.dwColor));
    if (run.bBack)
        format.setBackground(ColorOf(run.dwBack));
    if (!run.link.empty()) {
        format.setAnchor(true);
        format.setAnchorHref(QString::fromStdU16String(run.link));
    }
    return format;
}

Qt::Alignment AlignmentOf(RichAlign e)
{
    return e == RichAlign::Center ? Qt::AlignHCenter : e == RichAlign::Right ? Qt::AlignRight : Qt::AlignLeft;
}

void FillDocument(QTextDocument *pDocument, const RichDocument &doc)
{
    pDocument->clear();
    pDocument->setDefaultFont(OverlayFont());
    pDocument->setDocumentMargin(0);
    QTextCursor cursor(pDocument);
    for (size_t i = 0; i < doc.size(); i++) {
        QTextBlockFormat block;
        block.setAlignment(AlignmentOf(doc[i].eAlign));
        if (i)
            cursor.insertBlock(block, QTextCharFormat());
        else
            cursor.setBlockFormat(block);
        for (const RichRun &run : doc[i].aRun)
            cursor.insertText(TextOfRun(run), FormatOf(run));
    }
}

void SetTabs(QTextDocument *pDocument, qreal fDistance)
{
    QTextOption option = pDocument->defaultTextOption();
    option.setTabStopDistance(fDistance);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    pDocument->setDefaultTextOption(option);
}

QSizeF LaidOutSize(QTextDocument *pDocument, qreal fWidth)
{
    pDocument->setTextWidth(fWidth);
    return {pDocument->idealWidth(), pDocument->size().height()};
}

// Where an overlay's text stands in it.
QRectF RoomOf(const OverlayRect &rect)
{
    return QRectF(0, 0, rect.nWidth, rect.nHeight)
        .adjusted(OVERLAY_MARGIN_X, OVERLAY_MARGIN_Y, -OVERLAY_MARGIN_X, -OVERLAY_MARGIN_Y);
}

// Lays the text out for the room that it has, and says by how much it must shrink: where the rows break otherwise
// than they were measured, all of the text is worth more than the size of its letters.
qreal FitDocument(QTextDocument *pDocument, const QSizeF &room)
{
    if (room.isEmpty())
        return 1;
    SetTabs(pDocument, TAB_PIXELS);
    if (LaidOutSize(pDocument, room.width()).height() <= room.height())
        return 1;
    const QSizeF wide = LaidOutSize(pDocument, room.width() + 2 * OVERLAY_MARGIN_X);
    return std::min(
        {qreal(1), room.width() / std::max(wide.width(), qreal(1)), room.height() / std::max(wide.height(), qreal(1))});
}

OverlayPicture LoadTexture()
{
    const QImage image = QImage(QStringLiteral(":/overlay/MessageTexture.png")).convertToFormat(QImage::Format_RGB32);
    OverlayPicture texture = {image.width(), image.height(), {}};
    for (int y = 0; y < image.height(); y++) {
        const auto *pRow = reinterpret_cast<const u32 *>(image.constScanLine(y));
        texture.adwPixel.insert(texture.adwPixel.end(), pRow, pRow + image.width());
    }
    return texture;
}

QImage DrawFrame(const OverlayRect &rect, const OverlayPicture &texture)
{
    OverlayPicture frame = {rect.nWidth, rect.nHeight, {}};
    DrawOverlayFrame(&frame, nDisplayBits < 9 ? FRAME_RAISED : FRAME_TEXTURED, texture);
    QImage image(rect.nWidth, rect.nHeight, QImage::Format_RGB32);
    for (int y = 0; y < rect.nHeight; y++)
        std::memcpy(image.scanLine(y), &frame.adwPixel[static_cast<size_t>(y) * static_cast<size_t>(rect.nWidth)],
                    static_cast<size_t>(rect.nWidth) * 4);
    return image;
}

bool IsSeen(const VWWindowParms &vw)
{
    return vw.bShown && vw.rect.nWidth > 0 && vw.rect.nHeight > 0;
}

// What a picture was made of.
struct Made {
    u32 nVersion;
    i32 nWidth, nHeight;
    u32 dwText, dwBack;
    qreal fScale;
    bool operator==(const Made &) const = default;
};

Made MadeNow(const VWWindowParms &vw, qreal fScale)
{
    return {vw.nVersion,
            vw.rect.nWidth,
            vw.rect.nHeight,
            UIColorTable[UICOLOR_WINDOW_TEXT].dwColor,
            UIColorTable[UICOLOR_WINDOW_BACKGROUND].dwColor,
            fScale};
}

// What was blended last.
struct Blended {
    bool bSeen;
    i32 x, y;
    Made made;
    bool operator==(const Blended &) const = default;
};

Blended BlendedNow(const VWWindowParms &vw, qreal fScale)
{
    return IsSeen(vw) ? Blended{true, vw.rect.x, vw.rect.y, MadeNow(vw, fScale)} : Blended{};
}

} // namespace

struct OverlayPainter::Kept {
    QTextDocument document;
    u32 nVersion = 0; // of the document
    QImage picture;
    Made made = {};
    qreal fShrunk = 1;
    bool bKeyed = false;
    bool bMeasured = false; // the document is laid out for its size, not for the picture
    Blended blended = {};
};

OverlayPainter::OverlayPainter() : aKept(new Kept[OVERLAYS]), Texture(LoadTexture())
{
}

OverlayPainter::~OverlayPainter() = default;

OverlayPainter::Kept &OverlayPainter::DocumentOf(u32 iOverlay)
{
    Kept &kept = aKept[iOverlay];
    if (kept.nVersion != asOverlay[iOverlay].nVersion)
        FillDocument(&kept.document, OverlayDocument(iOverlay));
    kept.nVersion = asOverlay[iOverlay].nVersion;
    return kept;
}

void OverlayPainter::Measure(void *pvContext, u32 iOverlay, i32 nWrapWidth, i32 *pnWidth, i32 *pnHeight)
{
    Kept &kept = static_cast<OverlayPainter *>(pvContext)->DocumentOf(iOverlay);
    SetTabs(&kept.document, QFontMetrics(OverlayFont()).averageCharWidth() * MEASURE_TAB_LETTERS);
    const QSizeF size = LaidOutSize(&kept.document, nWrapWidth);
    *pnWidth = qCeil(size.width());
    *pnHeight = qCeil(size.height());
    kept.bMeasured = true;
}

void OverlayPainter::DrawPicture(u32 iOverlay, qreal fScale)
{
    const OverlayRect &rect = asOverlay[iOverlay].rect;
    Kept &kept = DocumentOf(iOverlay);
    const QRectF room = RoomOf(rect);
    kept.picture = QImage((QSizeF(rect.nWidth, rect.nHeight) * fScale).toSize(), QImage::Format_RGB32);
    QPainter painter(&kept.picture);
    painter.drawImage(kept.picture.rect(), DrawFrame(rect, Texture));
    painter.scale(fScale, fScale);
    painter.fillRect(room, ColorOf(UIColorTable[UICOLOR_WINDOW_BACKGROUND].dwColor));
    painter.setClipRect(room);
    painter.translate(room.topLeft());
    kept.fShrunk = FitDocument(&kept.document, room.size());
    painter.scale(kept.fShrunk, kept.fShrunk);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, ColorOf(UIColorTable[UICOLOR_WINDOW_TEXT].dwColor));
    kept.document.documentLayout()->draw(&painter, context);
    painter.end();
    kept.bKeyed = MakeOverlayTranslucent(reinterpret_cast<u32 *>(kept.picture.bits()),
                                         static_cast<u64>(kept.picture.sizeInBytes()) / 4, OVERLAY_ALPHA);
}

void OverlayPainter::Prepare(qreal fScale)
{
    for (u32 i = 0; i < OVERLAYS; i++) {
        Kept &kept = aKept[i];
        const Made made = MadeNow(asOverlay[i], fScale);
        if (!IsSeen(asOverlay[i]))
            continue;
        if (!(made == kept.made))
            DrawPicture(i, fScale);
        else if (kept.bMeasured)
            kept.fShrunk = FitDocument(&kept.document, RoomOf(asOverlay[i].rect).size());
        kept.made = made;
        kept.bMeasured = false;
    }
}

void OverlayPainter::Paint(const StretchTarget &target, qreal fScale)
{
    Prepare(fScale);
    for (u32 i = 0; i < OVERLAYS; i++) {
        const VWWindowParms &vw = asOverlay[i];
        Kept &kept = aKept[i];
        kept.blended = BlendedNow(vw, fScale);
        if (!kept.blended.bSeen)
            continue;
        const TranslucentPicture picture = {
            reinterpret_cast<const u32 *>(kept.picture.constBits()), kept.picture.width(), kept.picture.height(),
            static_cast<u64>(kept.picture.bytesPerLine()),           OVERLAY_ALPHA,        kept.bKeyed};
        BlendOverlay(target, qRound(vw.rect.x * fScale), qRound(vw.rect.y * fScale), picture);
    }
}

bool OverlayPainter::IsOutOfDate(qreal fScale) const
{
    for (u32 i = 0; i < OVERLAYS; i++)
        if (!(aKept[i].blended == BlendedNow(asOverlay[i], fScale)))
            return true;
    return false;
}

u32 OverlayPainter::OverlayAt(const QPointF &place)
{
    for (u32 i = OVERLAYS; i-- > 0;) {
        const OverlayRect &rect = asOverlay[i].rect;
        if (IsSeen(asOverlay[i]) && QRectF(rect.x, rect.y, rect.nWidth, rect.nHeight).contains(place))
            return i;
    }
    return OVERLAYS;
}

QString OverlayPainter::LinkAt(const QPointF &place)
{
    const u32 iOverlay = OverlayAt(place);
    if (iOverlay == OVERLAYS || aKept[iOverlay].picture.isNull())
        return {};
    const OverlayRect &rect = asOverlay[iOverlay].rect;
    const QPointF inside = place - QPointF(rect.x + OVERLAY_MARGIN_X, rect.y + OVERLAY_MARGIN_Y);
    Kept &kept = aKept[iOverlay];
    return kept.document.documentLayout()->anchorAt(inside / kept.fShrunk);
}
