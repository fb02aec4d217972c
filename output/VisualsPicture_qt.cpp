// VisualsPicture_qt.cpp -- how a frame and the overlays come into the visuals window
#include "output/VisualsWindow_qt.h"

#include "engine/PresetManager.h"
#include "output/mixer/Stretch.h"
#include "platform/Clock.h"
#include "platform/Notices.h"

#include <QBackingStore>
#include <QPainter>

#include <algorithm>

namespace {

constexpr u64 FRAMES_STAY_AWAY_MS = 100;

const HostBitmap *CurrentPicture()
{
    const PresetState *lppsi = CurrentPreset();
    return lppsi && lppsi->phbmOutput ? *lppsi->phbmOutput : nullptr;
}

bool HasPlainPixels(const QImage &image)
{
    return image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32_Premultiplied ||
           image.format() == QImage::Format_ARGB32;
}

StretchTarget TargetOf(QImage *pImage, QSize size)
{
    return {pImage->bits(), std::min(size.width(), pImage->width()), std::min(size.height(), pImage->height()),
            static_cast<u64>(pImage->bytesPerLine())};
}

} // namespace

// The picture is painted at once: a frame must not wait for the next turn of the event loop.
u32 VisualsWindow::Present(const HostBitmap *hbm)
{
    qwPresented = TickCount();
    if (!IsOnScreen())
        return 1;
    hbmPresented = hbm;
    bDrawn = false;
    repaint();
    hbmPresented = nullptr;
    nFramesOnScreen += bDrawn;
    return bDrawn;
}

void VisualsWindow::Compose(const StretchTarget &target, const HostBitmap *hbm)
{
    StretchPicture(target, hbm, true);
    Overlays.Paint(target, devicePixelRatioF());
}

// Straight into the pixels that the toolkit hands to the window system: one copy less for every frame.
bool VisualsWindow::ComposeDirectly()
{
    QPaintDevice *pDevice = backingStore() ? backingStore()->paintDevice() : nullptr;
    if (!hbmPresented || !pDevice || pDevice->devType() != QInternal::Image)
        return false;
    auto *pImage = static_cast<QImage *>(pDevice);
    if (!HasPlainPixels(*pImage))
        return false;
    Compose(TargetOf(pImage, DeviceSize()), hbmPresented);
    return true;
}

// Where the toolkit's own pixels are out of reach, and for paint requests between frames.
bool VisualsWindow::ComposeAside(QPainter *pPainter)
{
    const HostBitmap *hbm = hbmPresented ? hbmPresented : CurrentPicture();
    if (Picture.size() != DeviceSize())
        Picture = QImage(DeviceSize(), QImage::Format_RGB32);
    if (!hbm || Picture.isNull())
        return false;
    Compose(TargetOf(&Picture, DeviceSize()), hbm);
    Picture.setDevicePixelRatio(devicePixelRatioF());
    pPainter->drawImage(QPoint(0, 0), Picture);
    return true;
}

void VisualsWindow::paintEvent(QPaintEvent *)
{
    bDrawn = ComposeDirectly();
    if (bDrawn && NoticeText().empty())
        return;
    QPainter painter(this);
    if (!bDrawn)
        bDrawn = ComposeAside(&painter);
    if (!bDrawn)
        painter.fillRect(rect(), Qt::black);
    PaintNotices(&painter);
}

void VisualsWindow::TickOverlayTexts()
{
    TickOverlays({width(), height(), &Overlays, OverlayPainter::Measure});
    Overlays.Prepare(devicePixelRatioF());
    if (Overlays.IsOutOfDate(devicePixelRatioF()) && TickCount() - qwPresented > FRAMES_STAY_AWAY_MS)
        update(); // no frame comes that would bring them along
}
