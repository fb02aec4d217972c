// Icons_qt.cpp -- the program's own pictures for buttons and nodes, in the user's colours
#include "toolkit/Icons_qt.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
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

// Draws the picture at the size that is asked for instead of stretching one.
class UserIconEngine : public QIconEngine {
  public:
    UserIconEngine(const QByteArray &svg, UIColor e) : Svg(svg), eColor(e)
    {
    }
    void paint(QPainter *pPainter, const QRect &rect, QIcon::Mode eMode, QIcon::State) override
    {
        QByteArray colored = Svg;
        QSvgRenderer renderer(colored.replace("currentColor", ColorOf(eColor, eMode).name().toLatin1()));
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        pPainter->setRenderHint(QPainter::Antialiasing);
        renderer.render(pPainter, rect);
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode eMode, QIcon::State eState) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), eMode, eState);
        return pixmap;
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
        return new UserIconEngine(Svg, eColor);
    }

  private:
    const QByteArray Svg;
    const UIColor eColor;
};

} // namespace

QIcon UserIcon(const char *pszName, UIColor eColor)
{
    QFile file(QStringLiteral(":/ui/%1.svg").arg(QLatin1String(pszName)));
    if (file.open(QIODevice::ReadOnly))
        return QIcon(new UserIconEngine(file.readAll(), eColor));
    qWarning("there is no picture named %s.svg", pszName);
    return QIcon();
}
