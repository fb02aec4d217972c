// TileGridView_qt.h -- the grid of a tile control, as a widget
#pragma once

#include "controls/panels/TilePatterns.h"

#include <QWidget>

#include <functional>

// A click turns a tile over; the arrow keys, Home and End move the focused tile, and Space turns it over. [main-thread]
class TileGridView : public QWidget {
  public:
    TileGridView();
    ~TileGridView() override;

    std::function<TileGrid()> pfnTiles; // asked whenever they are needed: the record may go
    std::function<void(TileAt tile)> pfnTurn;

    TileGrid Tiles() const;
    TileAt FocusedTile() const;
    void FocusTile(TileAt tile);
    void Turn(TileAt tile);
    // "row 3, column 5: on"
    QString WordsOf(TileAt tile) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *pEvent) override;
    void mousePressEvent(QMouseEvent *pEvent) override;
    void keyPressEvent(QKeyEvent *pEvent) override;
    void focusInEvent(QFocusEvent *pEvent) override;
    void focusOutEvent(QFocusEvent *pEvent) override;

  private:
    static void HearColor(u32 iRow, void *pv);
    QSize DeviceSize() const;
    void TellFocus();

    TileAt Focused = {};
};
