// SoundMeter_qt.cpp -- the sound meter as a widget
#include "mainwindow/SoundMeter_qt.h"

#include "mainwindow/SoundStrip.h"
#include "platform/Clock.h"

#include <QPainter>

#include <span>

namespace {

constexpr int HEIGHT = 25; // two of each of the twelve rows, below the line that stays free

} // namespace

SoundMeter::SoundMeter(QWidget *pParent) : QWidget(pParent)
{
    setFixedHeight(HEIGHT);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(QStringLiteral("Sound level"));
}

void SoundMeter::Follow(bool bQuiet)
{
    if (visibleRegion().isEmpty() || window()->isMinimized())
        return;
    const QSize size = (QSizeF(this->size()) * devicePixelRatioF()).toSize();
    QImage picture = Picture.size() == size ? Picture : QImage(size, QImage::Format_RGB32);
    if (Picture.size() != size)
        picture.fill(Qt::black);
    const SoundStrip strip = ReadSoundStrip(bQuiet);
    const size_t nPixels = static_cast<size_t>(size.width()) * static_cast<size_t>(size.height());
    if (!picture.isNull())
        DrawSoundStrip(strip, {reinterpret_cast<u32 *>(picture.bits()), nPixels}, size.width(), size.height(),
                       TickCount());
    if (picture == Picture)
        return;
    Picture = picture;
    Picture.setDevicePixelRatio(devicePixelRatioF());
    update();
}

void SoundMeter::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (Picture.isNull())
        painter.fillRect(rect(), Qt::black);
    else
        painter.drawImage(QPoint(0, 0), Picture);
}
