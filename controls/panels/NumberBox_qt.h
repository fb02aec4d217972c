// NumberBox_qt.h -- a box for a number that knows what was typed into it and has not been read yet
#pragma once

#include <QLineEdit>

#include <functional>

// [main-thread]
class NumberBox : public QLineEdit {
  public:
    explicit NumberBox(const QString &name);

    // Replaces what is there; nothing more happens where it reads so already.
    void Show(const std::u16string &text);
    // As Show, but keeps what is being typed.
    void Refill(const std::u16string &text);
    // What was typed has been taken in, whatever became of it: it stays to be seen.
    void SetRead();
    bool IsUnread() const;

    std::function<void()> pfnRead;           // the focus leaves, or Enter
    std::function<void(int nSteps)> pfnStep; // arrow keys; page keys are ten steps

  protected:
    void keyPressEvent(QKeyEvent *pEvent) override;

  private:
    QString sKnown;
};
