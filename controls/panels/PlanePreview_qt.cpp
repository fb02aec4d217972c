// PlanePreview_qt.cpp -- the picture of a plane as a small widget
#include "controls/panels/PlanePreview_qt.h"

#include "controls/panels/PlanePicture.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr QSize PREVIEW_SIZE(176, 99);

} // namespace

PlanePreview::PlanePreview(std::function<const PlaneState *()> pfn) : pfnPlane(std::move(pfn))
{
    setMinimumSize(PREVIEW_SIZE);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize PlanePreview::sizeHint() const
{
    return PREVIEW_SIZE;
}

// A plane that a thread hangs in keeps the picture that it had.
QImage PlanePreview::Take() const
{
    const PlaneState *pps = pfnPlane();
    if (!pps)
        return QImage();
    if (!PlaneCanBeShown(pps))
        return Picture;
    const HostBitmap *hbm = pps->Info.hbmResolved;
    const QSize size = (QSizeF(this->size()) * devicePixelRatioF()).toSize().boundedTo({hbm->nWidth, hbm->nHeight});
    QImage picture(size.expandedTo({1, 1}), QImage::Format_RGB32);
    if (picture.isNull())
        return picture;
    const u64 nStride = static_cast<u64>(picture.bytesPerLine()) / sizeof(u32);
    ShrinkBitmap({reinterpret_cast<u32 *>(picture.bits()), picture.width(), picture.height(), nStride}, hbm);
    return picture;
}

void PlanePreview::Follow()
{
    if (visibleRegion().isEmpty())
        return;
    const QImage picture = Take();
    if (picture == Picture)
        return;
    Picture = picture;
    bFresh = true;
    update();
}

void PlanePreview::paintEvent(QPaintEvent *)
{
    if (!bFresh)
        Picture = Take();
    bFresh = false;
    QPainter painter(this);
    if (Picture.isNull())
        return painter.fillRect(rect(), Qt::black);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(rect(), Picture);
}
