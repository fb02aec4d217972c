// DialogFonts_qt.cpp -- the one font of a window that scales, fitted to the texts of its controls
#include "toolkit/DialogFonts_qt.h"

#include "toolkit/DialogControls_qt.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFontInfo>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QStyleOptionSpinBox>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr i32 LEAST_READABLE = 6;               // where a window is narrower or lower than its design
constexpr int MOST_BESIDE = 16, MOST_ABOVE = 4; // that a style needs around a text; what is more may get less
constexpr int FIELD_EDGE = 8, GROUP_EDGE = 24;
constexpr int LIST_ITEMS = 8;

QString WithoutMnemonics(QString text)
{
    for (qsizetype i = text.indexOf('&'); i >= 0; i = text.indexOf('&', i + 1))
        text.remove(i, 1); // of two, one stays
    return text;
}

bool ShowsText(const QToolButton *pButton)
{
    return pButton->toolButtonStyle() != Qt::ToolButtonIconOnly || pButton->icon().isNull();
}

QString LabelText(const QLabel *pLabel)
{
    const bool bRich = pLabel->textFormat() == Qt::RichText || pLabel->textFormat() == Qt::MarkdownText ||
                       (pLabel->textFormat() == Qt::AutoText && Qt::mightBeRichText(pLabel->text()));
    if (bRich || !pLabel->pixmap(Qt::ReturnByValue).isNull())
        return {};
    return pLabel->buddy() ? WithoutMnemonics(pLabel->text()) : pLabel->text();
}

// What is written on it in one font; empty: nothing that is measured.
QString TextOn(const QWidget *pControl)
{
    if (const auto *pTool = qobject_cast<const QToolButton *>(pControl); pTool && !ShowsText(pTool))
        return {};
    if (const auto *pLabel = qobject_cast<const QLabel *>(pControl))
        return LabelText(pLabel);
    if (const auto *pButton = qobject_cast<const QAbstractButton *>(pControl))
        return WithoutMnemonics(pButton->text());
    if (const auto *pField = qobject_cast<const QLineEdit *>(pControl))
        return pField->displayText();
    if (const auto *pNumber = qobject_cast<const QAbstractSpinBox *>(pControl))
        return pNumber->text();
    if (const auto *pCombo = qobject_cast<const QComboBox *>(pControl))
        return pCombo->currentText();
    const auto *pGroup = qobject_cast<const QGroupBox *>(pControl);
    return pGroup ? WithoutMnemonics(pGroup->title()) : QString();
}

bool HasSeveralLines(const QWidget *pControl)
{
    const auto *pLabel = qobject_cast<const QLabel *>(pControl);
    return pLabel && (pLabel->wordWrap() || pLabel->text().contains('\n'));
}

// As wide as the font is high.
bool HasMark(const QWidget *pControl)
{
    return qobject_cast<const QCheckBox *>(pControl) || qobject_cast<const QRadioButton *>(pControl);
}

int TextWidth(const QWidget *pControl, const QString &text, const QFontMetrics &metrics)
{
    const auto *pButton = qobject_cast<const QAbstractButton *>(pControl);
    const int nIcon = pButton && !pButton->icon().isNull() ? pButton->iconSize().width() : 0;
    return metrics.horizontalAdvance(text) + (HasMark(pControl) ? metrics.height() : 0) + nIcon;
}

template <typename Option> int BesideField(const QWidget *pControl, QStyle::ComplexControl eKind, QStyle::SubControl e)
{
    Option option;
    option.initFrom(pControl);
    option.frame = true;
    option.subControls = QStyle::SC_All;
    const QRect field = pControl->style()->subControlRect(eKind, &option, e, pControl);
    return std::max(pControl->width() - field.width(), 0);
}

int WidthBeside(const QWidget *pControl, int nText)
{
    if (qobject_cast<const QComboBox *>(pControl))
        return BesideField<QStyleOptionComboBox>(pControl, QStyle::CC_ComboBox, QStyle::SC_ComboBoxEditField);
    if (qobject_cast<const QAbstractSpinBox *>(pControl))
        return FIELD_EDGE + BesideField<QStyleOptionSpinBox>(pControl, QStyle::CC_SpinBox, QStyle::SC_SpinBoxEditField);
    if (qobject_cast<const QLineEdit *>(pControl))
        return FIELD_EDGE;
    if (qobject_cast<const QGroupBox *>(pControl))
        return GROUP_EDGE;
    return std::clamp(pControl->sizeHint().width() - nText, 0, MOST_BESIDE);
}

// Whether the whole text stands in a control of that size.
bool TextFits(const QWidget *pControl, const ControlRecord *pRecord, const QFontMetrics &metrics, const QSize &size)
{
    const QString text = TextOn(pControl);
    const QSize room = size - pRecord->TextRoom;
    if (HasSeveralLines(pControl)) {
        const QRect all(0, 0, room.width(), QWIDGETSIZE_MAX);
        return metrics.boundingRect(all, Qt::TextWordWrap, text).height() <= room.height();
    }
    return text.isEmpty() || (TextWidth(pControl, text, metrics) <= room.width() && metrics.height() <= room.height());
}

struct Fit {
    QFont Font;
    std::vector<QWidget *> apTight; // whose texts are to fit
};

bool AllFit(i32 nHeight, void *pv)
{
    auto *pFit = static_cast<Fit *>(pv);
    pFit->Font.setPixelSize(nHeight);
    const QFontMetrics metrics(pFit->Font);
    return std::ranges::all_of(pFit->apTight,
                               [&](const QWidget *p) { return TextFits(p, RecordOf(p), metrics, p->size()); });
}

// Texts that fit at the design size and would not now.
std::vector<QWidget *> FindTight(const QWidget *pDialog, const std::vector<QWidget *> &apControl, const QFont &font)
{
    const QFontMetrics now(font), design(pDialog->font());
    std::vector<QWidget *> apTight;
    std::ranges::copy_if(apControl, std::back_inserter(apTight), [&](const QWidget *p) {
        const ControlRecord *pRecord = RecordOf(p);
        return pRecord && PartOf(p) != DialogPart::KeepsFont && !TextFits(p, pRecord, now, p->size()) &&
               TextFits(p, pRecord, design, ToQRect(pRecord->Info.rcDesign).size());
    });
    return apTight;
}

// Letters of that height have as many pixels; lines of that height have a few less.
i32 LetterHeight(const QWidget *pDialog, const ScaledFont &lf)
{
    const i32 nLetters = QFontInfo(pDialog->font()).pixelSize();
    const i32 nLine = std::max(QFontMetrics(pDialog->font()).height(), 1);
    return std::max(lf.lfHeight < 0 ? -lf.lfHeight : lf.lfHeight * nLetters / nLine, 1);
}

void SetGivenFont(QWidget *pControl, ControlRecord *pRecord, QFont font)
{
    if (pRecord->bFontGiven && pControl->font() == font)
        return;
    if (!pRecord->bFontGiven)
        pRecord->OwnFont = pControl->testAttribute(Qt::WA_SetFont) ? pControl->font() : QFont();
    font.setResolveMask(QFont::AllPropertiesResolved);
    pControl->setFont(font);
    pRecord->GivenFont = pControl->font();
    pRecord->bFontGiven = true;
}

bool TakesFont(const QWidget *pControl)
{
    const DialogPart ePart = PartOf(pControl);
    return ePart == DialogPart::Control || (ePart == DialogPart::Group && qobject_cast<const QGroupBox *>(pControl));
}

// At least one and a half times as wide as the box, and as its texts need.
void WidenList(QComboBox *pCombo, ControlRecord *pRecord)
{
    QAbstractItemView *pList = pCombo->view();
    if (pList->minimumWidth() != pRecord->nListGiven)
        pRecord->nListAsked = pList->minimumWidth();
    pRecord->nListGiven = std::max(pRecord->nListAsked, RoundAway(1.5 * pCombo->width()));
    pList->setMinimumWidth(pRecord->nListGiven);
    pCombo->setMaxVisibleItems(std::max(pCombo->maxVisibleItems(), LIST_ITEMS));
}

} // namespace

ScaledFont DesignFontOf(const QWidget *pWidget)
{
    const i32 nHeight = std::max(QFontInfo(pWidget->font()).pixelSize(), 1);
    return {-nHeight, DesignFontWidth(nHeight), pWidget->font().weight()};
}

void TakeFont(QWidget *pControl, ControlRecord *pRecord)
{
    const QFontMetrics metrics(pControl->font());
    const QString text = TextOn(pControl);
    const int nBeside = text.isEmpty() ? 0 : WidthBeside(pControl, TextWidth(pControl, text, metrics));
    pRecord->TextRoom = {
        HasSeveralLines(pControl) ? 0 : nBeside,
        HasSeveralLines(pControl) ? 0 : std::clamp(pControl->sizeHint().height() - metrics.height(), 0, MOST_ABOVE)};
    if (auto *pCombo = qobject_cast<QComboBox *>(pControl))
        WidenList(pCombo, pRecord);
}

void PutFontBack(QWidget *pControl, ControlRecord *pRecord)
{
    if (pRecord->bFontGiven && pControl->font() == pRecord->GivenFont)
        pControl->setFont(pRecord->OwnFont);
    pRecord->bFontGiven = false;
}

QFont FitDialogFont(const QWidget *pDialog, const std::vector<QWidget *> &apControl, const ScaleFactors &factors)
{
    const SDScaleInfo &info = RecordOf(pDialog)->Info;
    const ScaledFont lf = ScaleFont(info.lfDesign, factors, info.rcDesign.bottom - info.rcDesign.top);
    const i32 nWanted = LetterHeight(pDialog, lf);
    const bool bSmaller = factors.fScaleX < 1 || factors.fScaleY < 1;
    Fit fit = {pDialog->font(), {}};
    fit.Font.setWeight(QFont::Normal);
    fit.Font.setStretch(FontStretch(lf, info.lfDesign));
    fit.Font.setPixelSize(nWanted);
    fit.apTight = FindTight(pDialog, apControl, fit.Font);
    if (!fit.apTight.empty())
        fit.Font.setPixelSize(
            FitFontHeight(nWanted, bSmaller ? LEAST_READABLE : -info.lfDesign.lfHeight, AllFit, &fit));
    return fit.Font;
}

void GiveFont(const std::vector<QWidget *> &apControl, const QFont &font)
{
    for (QWidget *pControl : apControl) // before a group around it hands its own down
        if (ControlRecord *pRecord = RecordOf(pControl);
            pRecord && !pRecord->bFontGiven && PartOf(pControl) == DialogPart::KeepsFont)
            SetGivenFont(pControl, pRecord, pControl->font());
    for (QWidget *pControl : apControl) {
        ControlRecord *pRecord = RecordOf(pControl);
        if (pRecord && TakesFont(pControl))
            SetGivenFont(pControl, pRecord, font);
        if (auto *pCombo = qobject_cast<QComboBox *>(pControl); pCombo && pRecord)
            WidenList(pCombo, pRecord);
    }
}
