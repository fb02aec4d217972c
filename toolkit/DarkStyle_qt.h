// DarkStyle_qt.h -- the dark look of all standard controls, in the user's colours
#pragma once

#include <QProxyStyle>

class QApplication;

// Paints all standard controls over a style that gives geometry and behaviour.
class DarkStyle : public QProxyStyle {
  public:
    DarkStyle();

    void polish(QWidget *pWidget) override;
    using QProxyStyle::polish;
    QPalette standardPalette() const override;
    int pixelMetric(PixelMetric eMetric, const QStyleOption *pOption, const QWidget *pWidget) const override;
    int styleHint(StyleHint eHint, const QStyleOption *pOption, const QWidget *pWidget,
                  QStyleHintReturn *pReturn) const override;
    void drawPrimitive(PrimitiveElement eElement, const QStyleOption *pOption, QPainter *pPainter,
                       const QWidget *pWidget) const override;
    void drawControl(ControlElement eElement, const QStyleOption *pOption, QPainter *pPainter,
                     const QWidget *pWidget) const override;
    void drawComplexControl(ComplexControl eControl, const QStyleOptionComplex *pOption, QPainter *pPainter,
                            const QWidget *pWidget) const override;
    QRect subElementRect(SubElement eElement, const QStyleOption *pOption, const QWidget *pWidget) const override;
    QRect subControlRect(ComplexControl eControl, const QStyleOptionComplex *pOption, SubControl ePart,
                         const QWidget *pWidget) const override;
    QSize sizeFromContents(ContentsType eType, const QStyleOption *pOption, const QSize &size,
                           const QWidget *pWidget) const override;
    QIcon standardIcon(StandardPixmap eIcon, const QStyleOption *pOption, const QWidget *pWidget) const override;
};

// Gives all windows of the application, those to come too, the dark look. From then on a change of a user colour shows
// in all of them, at once, on the next turn of the event loop. Call once, before the first window. [main-thread]
void InstallDarkLook(QApplication *pApp);
