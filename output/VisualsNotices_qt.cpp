// VisualsNotices_qt.cpp -- what the visuals window has to say: notices over the picture, a status in its title
#include "output/VisualsWindow_qt.h"

#include "platform/Notices.h"

#include <QPainter>

// The last status leaves after a while.
void VisualsWindow::ShowStatus(const QString &text)
{
    setWindowTitle(QLatin1String(VISUALS_TITLE) + QStringLiteral(" - ") + text);
    StatusTimer.start();
}

// What the user must know stands at the bottom until a click or a key says that it was read.
void VisualsWindow::PaintNotices(QPainter *pPainter)
{
    if (NoticeText().empty())
        return;
    const QString text = QString::fromStdString(NoticeText()).trimmed();
    const QRect inner = rect().adjusted(24, 24, -24, -24);
    QRect box = pPainter->boundingRect(inner, Qt::AlignLeft | Qt::AlignBottom | Qt::TextWordWrap, text);
    pPainter->fillRect(box.adjusted(-12, -10, 12, 10), QColor(0, 0, 0, 190));
    pPainter->setPen(QColor(235, 235, 235));
    pPainter->drawText(box, Qt::AlignLeft | Qt::TextWordWrap, text);
}
