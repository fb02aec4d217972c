// SoundMeter_qt.h -- the sound meter as a widget
#pragma once

#include <QImage>
#include <QWidget>

class SoundMeter : public QWidget {
  public:
    explicit SoundMeter(QWidget *pParent = nullptr);
    // Reads the levels and paints what they changed; nothing while it is out of sight. bQuiet as SoundIsQuiet says.
    void Follow(bool bQuiet);

  protected:
    void paintEvent(QPaintEvent *pEvent) override;

  private:
    QImage Picture;
};
