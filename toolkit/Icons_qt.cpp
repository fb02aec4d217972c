// Icons_qt.cpp -- the program's own pictures for buttons and nodes, in the user's colours
#include "toolkit/Icons_qt.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace {

constexpr int DESIGN_SIDE = 24;

QColor ColorOf(UIColor eColor, QIcon::Mode eMode)
{
    if (eMode == QIcon::Disabled)
        return QApplication::palette().color(QPalette::Disabled, QPalette::ButtonText);
    const u32 dwColor = UIColorTable[eColor].dwColor;
    return QColor(dwColor & 0xFF, dwColor >> 8 & 0xFF, dwColor >> 16 & 0xFF);
}

// Draws the picture at the size that is asked for instead of stretching one. What has been drawn is kept, since the
// rows of a tree ask for few pictures many times; the file is read when the picture is first seen.
class UserIconEngine : public QIconEngine {
  public:
    UserIconEngine(const QString &path, UIColor e) : Path(path), eColor(e)
    {
    }
    void paint(QPainter *pPainter, const QRect &rect, QIcon::Mode eMode, QIcon::State eState) override
    {
        if (pPainter->transform().type() > QTransform::TxTranslate)
            return Render(pPainter, rect, ColorOf(eColor, eMode));
        const qreal fRatio = pPainter->device()->devicePixelRatio();
        QPixmap kept = pixmap((QSizeF(rect.size()) * fRatio).toSize(), eMode, eState);
        kept.setDevicePixelRatio(fRatio);
        pPainter->drawPixmap(rect.topLeft(), kept);
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode eMode, QIcon::State) override
    {
        const QColor color = ColorOf(eColor, eMode);
        const QString key = Path + QString::asprintf(" %d %d %x", size.width(), size.height(), color.rgb());
        QPixmap kept;
        if (QPixmapCache::find(key, &kept))
            return kept;
        kept = QPixmap(size);
        kept.fill(Qt::transparent);
        QPainter painter(&kept);
        Render(&painter, kept.rect(), color);
        painter.end();
        QPixmapCache::insert(key, kept);
        return kept;
    }
    QSize actualSize(const QSize &size, QIcon::Mode, QIcon::State) override
    {
        return size;
    }
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
    {
        return {QSize(DESIGN_SIDE, DESIGN_SIDE)};
    }
    QIconEngine *clone() const override
    {
        return new UserIconEngine(Path, eColor);
    }

  private:
    void Render(QPainter *pPainter, const QRect &rect, const QColor &color) const
    {
        QFile file(Path);
        if (!file.open(QIODevice::ReadOnly))
            return;
        QSvgRenderer renderer(file.readAll().replace("currentColor", color.name().toLatin1()));
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        pPainter->setRenderHint(QPainter::Antialiasing);
        renderer.render(pPainter, rect);
    }

    const QString Path;
    const UIColor eColor;
};

} // namespace

QIcon UserIcon(const char *pszName, UIColor eColor)
{
    const QString path = QStringLiteral(":/ui/%1.svg").arg(QLatin1String(pszName));
    if (QFile::exists(path))
        return QIcon(new UserIconEngine(path, eColor));
    qWarning("there is no picture named %s.svg", pszName);
    return QIcon();
}
