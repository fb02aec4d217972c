// OverlayPainter_qt.h -- the overlays' texts as pictures that are ready to be blended over a frame
#pragma once

#include "output/OverlayPixels.h"
#include "output/Overlays.h"

#include <QImage>
#include <QString>
#include <QTextDocument>

#include <memory>

// Keeps one picture per overlay and makes it anew only when the text, the size, the colours or the screen's scale have
// changed. [main-thread]
class OverlayPainter {
  public:
    OverlayPainter();
    ~OverlayPainter();
    // The host's measure, see OverlayHost; pvContext is the painter.
    static void Measure(void *pvContext, u32 iOverlay, i32 nWrapWidth, i32 *pnWidth, i32 *pnHeight);
    // Makes the pictures of all that are shown, where they are not those of the moment.
    void Prepare(qreal fScale);
    // Blends all that are shown over the target, whose pixels are those of the screen.
    void Paint(const StretchTarget &target, qreal fScale);
    // Whether what is shown differs from what Paint blended last.
    bool IsOutOfDate(qreal fScale) const;
    // The overlay that is shown there, in the toolkit's pixels; OVERLAYS: none.
    static u32 OverlayAt(const QPointF &place);
    // Target of the link there; empty: none.
    QString LinkAt(const QPointF &place);

  private:
    struct Kept;
    Kept &DocumentOf(u32 iOverlay);
    void DrawPicture(u32 iOverlay, qreal fScale);

    std::unique_ptr<Kept[]> aKept;
    OverlayPicture Texture;
};
