// Meters_qt.cpp -- paints level meters and progress bars
#include "toolkit/Meters_qt.h"

#include "platform/Clock.h"

#include <QImage>
#include <QPainter>
#include <QWidget>

namespace {

// A row of pixels, or nothing where the size is empty or out of all bounds.
QImage MakeStrip(int w, int h)
{
    return h > 0 && w > 0 && w <= 32767 ? QImage(w, 1, QImage::Format_RGB32) : QImage();
}

std::span<u32> PixelsOf(QImage *pStrip)
{
    return {reinterpret_cast<u32 *>(pStrip->bits()), static_cast<size_t>(pStrip->width())};
}

// Nearest pixels: the black lines stay lines whatever the scale.
void StretchStrip(QPainter *pPainter, const QRect &box, const QImage &strip)
{
    const bool bSmooth = pPainter->testRenderHint(QPainter::SmoothPixmapTransform);
    pPainter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    pPainter->drawImage(box, strip);
    pPainter->setRenderHint(QPainter::SmoothPixmapTransform, bSmooth);
}

} // namespace

void DrawMeterBar(QPainter *pPainter, int y, int w, int h, f32 fLevel, PeakStore *pps, u32 dwLow, u32 dwHigh)
{
    QImage strip = MakeStrip(w, h);
    if (strip.isNull())
        return;
    FillMeterStrip(PixelsOf(&strip), fLevel, pps, dwLow, dwHigh, TickCount());
    StretchStrip(pPainter, QRect(0, y, w, h), strip);
}

void DrawProgressBar(QPainter *pPainter, const QRect &box, f32 fLevel, u32 dwLow, u32 dwHigh)
{
    QImage strip = MakeStrip(box.width(), box.height());
    if (strip.isNull())
        return;
    FillProgressStrip(PixelsOf(&strip), fLevel, dwLow, dwHigh);
    StretchStrip(pPainter, box, strip);
}

void ShowProgressBar(QWidget *pWidget, f32 fLevel, u32 dwLow, u32 dwHigh, const QString &text)
{
    QPainter painter(pWidget);
    DrawProgressBar(&painter, pWidget->rect(), fLevel, dwLow, dwHigh);
    painter.setPen(Qt::white);
    painter.drawText(pWidget->rect(), Qt::AlignCenter | Qt::TextSingleLine, text);
}
