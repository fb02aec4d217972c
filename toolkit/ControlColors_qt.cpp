// ControlColors_qt.cpp -- the user's colours on single controls: lists, trees, texts, check boxes
#include "toolkit/ControlColors_qt.h"

#include "toolkit/DarkPaint_qt.h"
#include "toolkit/Meters.h"
#include "toolkit/UIColors.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListView>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextEdit>
#include <QTreeView>
#include <QVariant>

#include <vector>

namespace {

constexpr const char *CUSTOMIZED = "CtrlCustomized";
constexpr const char *VIEW_COLORS = "ViewColors";
constexpr const char *RICH_EDIT_COLORS = "RichEditColors";
constexpr const char *CHECK_PLACEMENT = "CheckPlacement";
constexpr int TAB_DIALOG_UNITS = 16;

u32 RowColor(UIColor eRow)
{
    return UIColorTable[eRow].dwColor;
}

// The list that a combo box drops is part of the dialog.
bool IsComboList(const QWidget *pView)
{
    const QWidget *pParent = pView->parentWidget();
    return pView->inherits("QComboBoxListView") || (pParent && pParent->inherits("QComboBoxPrivateContainer"));
}

void SetViewPalette(QAbstractItemView *pView, u32 dwBack, u32 dwText)
{
    QPalette palette = pView->palette();
    const u32 dwSelected = SelectionShade(dwBack, dwText);
    palette.setColor(QPalette::Base, ColorOf(dwBack));
    palette.setColor(QPalette::AlternateBase, ColorOf(LerpColor(dwBack, dwText, 6, 100)));
    palette.setColor(QPalette::Text, ColorOf(dwText));
    palette.setColor(QPalette::Highlight, ColorOf(dwSelected));
    palette.setColor(QPalette::HighlightedText, ColorOf(ReadableColor(dwSelected, dwText, 4.5f)));
    palette.setColor(QPalette::Disabled, QPalette::Text, ColorOf(Look().dwDisabled));
    pView->setPalette(palette);
}

void TakeViewColors(QAbstractItemView *pView, ViewColors eColors)
{
    pView->setProperty(VIEW_COLORS, static_cast<int>(eColors));
    if (eColors == ViewColors::List)
        SetViewPalette(pView, RowColor(UICOLOR_LIST_BACKGROUND), RowColor(UICOLOR_LIST_TEXT));
    else if (eColors == ViewColors::Tree)
        SetViewPalette(pView, RowColor(UICOLOR_TREE_BACKGROUND), RowColor(UICOLOR_TREE_TEXT));
}

// What the window's own code has asked for before the control was first shown stands.
void TakeStandardViewColors(QAbstractItemView *pView)
{
    if (pView->property(VIEW_COLORS).isValid() || IsComboList(pView) || pView->inherits("QHeaderView"))
        return;
    TakeViewColors(pView, qobject_cast<QTreeView *>(pView) ? ViewColors::Tree : ViewColors::List);
}

void FormatAll(QTextDocument *pDocument)
{
    QTextCharFormat format;
    format.setForeground(ColorOf(Look().dwText));
    format.setBackground(ColorOf(Look().dwWindow));
    QTextCursor cursor(pDocument);
    cursor.select(QTextCursor::Document);
    cursor.mergeCharFormat(format);
}

QTextCharFormat LinkFormat(const QString &address)
{
    QTextCharFormat format;
    format.setAnchor(true);
    format.setAnchorHref(address);
    format.setForeground(ColorOf(Look().dwLink));
    format.setFontUnderline(true);
    return format;
}

void MergeFormat(QTextCursor cursor, int nStart, int nLength, const QTextCharFormat &format)
{
    cursor.setPosition(nStart);
    cursor.setPosition(nStart + nLength, QTextCursor::KeepAnchor);
    cursor.mergeCharFormat(format);
}

// The punctuation behind an address is the sentence's.
void FormatAddresses(const QTextBlock &block)
{
    static const QRegularExpression address(
        QStringLiteral(R"(\b(?:https?://|ftp://|file://|mailto:|www\.)[^\s<>"]*[^\s<>".,;:!?'()\[\]{}])"),
        QRegularExpression::CaseInsensitiveOption);
    const QString text = block.text();
    for (auto i = address.globalMatch(text); i.hasNext();) {
        const QRegularExpressionMatch match = i.next();
        const QString found = match.captured();
        const bool bNoScheme = found.startsWith(QLatin1String("www."), Qt::CaseInsensitive);
        MergeFormat(QTextCursor(block), block.position() + static_cast<int>(match.capturedStart()),
                    static_cast<int>(match.capturedLength()),
                    LinkFormat(bNoScheme ? QStringLiteral("http://") + found : found));
    }
}

struct LinkPlace {
    int nStart;
    int nLength;
    QString address;
};

// Links that the text brings along.
std::vector<LinkPlace> FindLinks(QTextDocument *pDocument)
{
    std::vector<LinkPlace> links;
    for (QTextBlock block = pDocument->begin(); block.isValid(); block = block.next())
        for (auto i = block.begin(); !i.atEnd(); ++i)
            if (i.fragment().charFormat().isAnchor())
                links.push_back(
                    {i.fragment().position(), i.fragment().length(), i.fragment().charFormat().anchorHref()});
    return links;
}

// A dialog unit is a quarter of the average letter's width.
qreal DialogUnitWidth(const QFont &font)
{
    static const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    return QFontMetricsF(font).horizontalAdvance(letters) / static_cast<qreal>(letters.size()) / 4;
}

} // namespace

u32 CustomizeControl(QWidget *pControl)
{
    if (!pControl || pControl->property(CUSTOMIZED).toInt() == 1)
        return 1;
    pControl->setProperty(CUSTOMIZED, 1);
    if (qobject_cast<QLineEdit *>(pControl))
        pControl->setAttribute(Qt::WA_Hover);
    if (auto *pView = qobject_cast<QAbstractItemView *>(pControl))
        TakeStandardViewColors(pView);
    return 1;
}

void RefreshControlColors(QWidget *pControl)
{
    auto *pView = qobject_cast<QAbstractItemView *>(pControl);
    if (pView && ViewColorsOf(pView) != ViewColors::None)
        TakeViewColors(pView, ViewColorsOf(pView));
    auto *pEdit = qobject_cast<QTextEdit *>(pControl);
    if (pEdit && pEdit->property(RICH_EDIT_COLORS).toBool())
        ApplyRichEditColors(pEdit);
}

ViewColors ViewColorsOf(const QWidget *pView)
{
    return static_cast<ViewColors>(pView ? pView->property(VIEW_COLORS).toUInt() : 0u);
}

void ApplyListColors(QAbstractItemView *pView)
{
    TakeViewColors(pView, ViewColors::List);
}

void ApplyTreeColors(QAbstractItemView *pView)
{
    TakeViewColors(pView, ViewColors::Tree);
}

void ApplyRichEditColors(QTextEdit *pEdit)
{
    pEdit->setProperty(RICH_EDIT_COLORS, true);
    QTextDocument *pDocument = pEdit->document();
    FormatAll(pDocument);
    for (QTextBlock block = pDocument->begin(); block.isValid(); block = block.next())
        FormatAddresses(block);
    for (const LinkPlace &link : FindLinks(pDocument))
        MergeFormat(QTextCursor(pDocument), link.nStart, link.nLength, LinkFormat(link.address));
    pEdit->setTabStopDistance(TAB_DIALOG_UNITS * DialogUnitWidth(pEdit->font()));
}

void SetCheckPlacement(QCheckBox *pBox, CheckPlacement ePlacement)
{
    pBox->setProperty(CHECK_PLACEMENT, static_cast<int>(ePlacement));
    pBox->updateGeometry();
    pBox->update();
}

CheckPlacement CheckPlacementOf(const QWidget *pBox)
{
    return static_cast<CheckPlacement>(pBox ? pBox->property(CHECK_PLACEMENT).toUInt() : 0u);
}
