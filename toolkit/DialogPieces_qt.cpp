// DialogPieces_qt.cpp -- the small parts that dialogs and panels are made of
#include "toolkit/DialogPieces_qt.h"

#include "toolkit/Commands.h"
#include "toolkit/FileChooser_qt.h"
#include "toolkit/WindowEvents_qt.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTextDocument>
#include <QTreeView>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int FONT_HEIGHT_MIN = 6, FONT_HEIGHT_MAX = 72;
constexpr int LIST_PADDING = 12; // beside the longest text of a dropped list

void ChangeFontHeight(QWidget *pView, int nBy)
{
    QFont font = pView->font();
    const int nHeight = font.pixelSize() > 0 ? font.pixelSize() : QFontInfo(font).pixelSize();
    font.setPixelSize(std::clamp(nHeight + nBy, FONT_HEIGHT_MIN, FONT_HEIGHT_MAX));
    pView->setFont(font);
}

// The wheel arrives at the viewport. Small steps of fine wheels add up to one.
class FontZoom : public QObject {
  public:
    explicit FontZoom(QAbstractItemView *p) : QObject(p), pView(p)
    {
        pView->viewport()->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject *, QEvent *pEvent) override
    {
        if (pEvent->type() != QEvent::Wheel)
            return false;
        const auto *pWheel = static_cast<QWheelEvent *>(pEvent);
        if (!(pWheel->modifiers() & Qt::ControlModifier))
            return false;
        nDelta += WheelDeltaOf(*pWheel);
        const int nSteps = nDelta / QWheelEvent::DefaultDeltasPerStep;
        nDelta %= QWheelEvent::DefaultDeltasPerStep;
        if (nSteps)
            ChangeFontHeight(pView, nSteps);
        return true;
    }

  private:
    QAbstractItemView *const pView;
    int nDelta = 0;
};

void PickFolder(QLineEdit *pLine, const QString &prompt, const std::function<void()> &picked)
{
    AskForFolder(pLine->window(), prompt.toStdU16String(), pLine->text().toStdU16String(),
                 [line = QPointer(pLine), picked](const std::u16string &path) {
                     if (!line)
                         return;
                     line->setText(QDir::toNativeSeparators(QString::fromStdU16String(path)));
                     picked();
                 });
}

} // namespace

QString TitleText(const std::u16string &title)
{
    return QString::fromStdU16String(OneLine(title)).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

QString PlainTip(const QString &text)
{
    const QString kept = QStringLiteral("<p style='white-space:pre'>%1</p>");
    return Qt::mightBeRichText(text) ? kept.arg(text.toHtmlEscaped()) : text;
}

void AddToolTip(QWidget *pControl, const QString &text)
{
    pControl->setToolTip(PlainTip(text));
    if (pControl->accessibleName().isEmpty())
        pControl->setAccessibleName(text);
}

void AddComboItem(QComboBox *pCombo, const QString &text, i64 nValue, i64 nWanted)
{
    pCombo->addItem(text, QVariant::fromValue<qlonglong>(nValue));
    if (nValue == nWanted)
        pCombo->setCurrentIndex(pCombo->count() - 1);
    const int nWidth = pCombo->fontMetrics().horizontalAdvance(text) + LIST_PADDING;
    QAbstractItemView *pList = pCombo->view();
    pList->setMinimumWidth(std::max(pList->minimumWidth(), nWidth));
}

i64 ComboValue(const QComboBox *pCombo, i64 nNone)
{
    const QVariant value = pCombo->currentData();
    return value.isValid() ? value.toLongLong() : nNone;
}

void InitTrackBar(QSlider *pSlider, QSpinBox *pField, const TrackBarRange &range, i32 nValue, const QString &name)
{
    pSlider->setRange(range.nMin, range.nMax);
    pSlider->setSingleStep(range.nLine);
    pSlider->setPageStep(range.nPage);
    pSlider->setAccessibleName(name);
    pField->setRange(range.nMin, range.nMax);
    pField->setAccessibleName(name);
    pSlider->setValue(nValue);
    pField->setValue(nValue);
    QObject::connect(pSlider, &QSlider::valueChanged, pField, &QSpinBox::setValue);
}

void SetDlgItemFloat(QLineEdit *pField, double f, int nDecimals)
{
    pField->setText(QString::number(f, 'f', nDecimals));
}

bool GetDlgItemFloat(const QLineEdit *pField, double *pf)
{
    bool bIsNumber = false;
    const double f = pField->text().toDouble(&bIsNumber);
    if (bIsNumber && std::isfinite(f))
        *pf = f;
    return bIsNumber && std::isfinite(f);
}

QSpinBox *MakeNumberField(i32 nMin, i32 nMax, const QString &name)
{
    auto *pBox = new QSpinBox;
    pBox->setRange(nMin, nMax);
    pBox->setAccessibleName(name);
    return pBox;
}

QLineEdit *MakeTextField(i32 nCharsMax, const QString &name)
{
    auto *pLine = new QLineEdit;
    pLine->setMaxLength(nCharsMax);
    pLine->setAccessibleName(name);
    return pLine;
}

PathField MakeFolderField(const QString &name, const QString &prompt, i32 nCharsMax, std::function<void()> picked)
{
    auto *pRow = new QWidget;
    QLineEdit *pLine = MakeTextField(nCharsMax, name);
    auto *pPick = new QPushButton(QStringLiteral("..."));
    pPick->setAccessibleName(prompt);
    QObject::connect(pPick, &QPushButton::clicked, pLine, [=] { PickFolder(pLine, prompt, picked); });
    auto *pLayout = new QHBoxLayout(pRow);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(pLine);
    pLayout->addWidget(pPick);
    return {pLine, pRow};
}

void ZoomListFont(QAbstractItemView *pView)
{
    new FontZoom(pView);
}

void ListColumnClickSort(QTreeView *pList, int iColumn, bool bDescending)
{
    pList->header()->setSectionsClickable(true);
    pList->header()->setSortIndicatorShown(true);
    pList->header()->setSortIndicator(iColumn, bDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
    pList->setSortingEnabled(true);
}
