// DarkStyle_qt.cpp -- the dark look of all standard controls, in the user's colours
#include "toolkit/DarkStyle_qt.h"

#include "platform/MainThread.h"
#include "toolkit/ControlColors_qt.h"
#include "toolkit/DarkPaint_qt.h"
#include "toolkit/DarkPieces_qt.h"
#include "toolkit/UIColors.h"

#include <QApplication>
#include <QStyleOption>
#include <QToolTip>

#include <algorithm>
#include <span>

namespace {

bool bRestylePending = false; // [main-thread]

struct PieceRow {
    int eElement;
    void (*pfnDraw)(const DarkPiece &piece);
};

constexpr PieceRow asPrimitive[] = {
    {QStyle::PE_PanelButtonCommand, DrawPushButton},
    {QStyle::PE_FrameDefaultButton, DrawNothing}, // the panel shows it
    {QStyle::PE_PanelButtonTool, DrawToolButtonPanel},
    {QStyle::PE_FrameButtonTool, DrawToolButtonPanel},
    {QStyle::PE_IndicatorButtonDropDown, DrawToolButtonPanel},
    {QStyle::PE_IndicatorCheckBox, DrawCheckIndicator},
    {QStyle::PE_IndicatorItemViewItemCheck, DrawCheckIndicator},
    {QStyle::PE_IndicatorRadioButton, DrawRadioIndicator},
    {QStyle::PE_FrameFocusRect, DrawFocusRect},
    {QStyle::PE_IndicatorArrowUp, DrawUpArrow},
    {QStyle::PE_IndicatorArrowDown, DrawDownArrow},
    {QStyle::PE_IndicatorArrowLeft, DrawLeftArrow},
    {QStyle::PE_IndicatorArrowRight, DrawRightArrow},
    {QStyle::PE_IndicatorHeaderArrow, DrawHeaderArrow},
    {QStyle::PE_IndicatorTabClose, DrawTabClose},
    {QStyle::PE_IndicatorBranch, DrawBranch},
    {QStyle::PE_PanelLineEdit, DrawFieldPanel},
    {QStyle::PE_FrameLineEdit, DrawFieldFrame},
    {QStyle::PE_Frame, DrawFrame},
    {QStyle::PE_FrameWindow, DrawFrame},
    {QStyle::PE_FrameDockWidget, DrawFrame},
    {QStyle::PE_FrameStatusBarItem, DrawNothing},
    {QStyle::PE_FrameTabWidget, DrawTabPage},
    {QStyle::PE_FrameTabBarBase, DrawTabBase},
    {QStyle::PE_PanelScrollAreaCorner, DrawScrollCorner},
    {QStyle::PE_PanelMenu, DrawMenuPanel},
    {QStyle::PE_FrameMenu, DrawMenuPanel},
    {QStyle::PE_PanelMenuBar, DrawMenuBarSpace},
    {QStyle::PE_PanelTipLabel, DrawTipPanel},
    {QStyle::PE_PanelItemViewItem, DrawItemPanel},
    {QStyle::PE_PanelToolBar, DrawToolBar},
};

constexpr PieceRow asControl[] = {
    {QStyle::CE_CheckBox, DrawCheckBox},
    {QStyle::CE_TabBarTabShape, DrawTabShape},
    {QStyle::CE_ProgressBarGroove, DrawProgressGroove},
    {QStyle::CE_ProgressBarContents, DrawProgressContents},
    {QStyle::CE_ProgressBarLabel, DrawProgressLabel},
    {QStyle::CE_MenuItem, DrawMenuItem},
    {QStyle::CE_MenuEmptyArea, DrawNothing},
    {QStyle::CE_MenuBarItem, DrawMenuBarItem},
    {QStyle::CE_MenuBarEmptyArea, DrawMenuBarSpace},
    {QStyle::CE_HeaderSection, DrawHeaderSection},
    {QStyle::CE_HeaderEmptyArea, DrawHeaderSpace},
    {QStyle::CE_Splitter, DrawSplitter},
    {QStyle::CE_SizeGrip, DrawSizeGrip},
    {QStyle::CE_ToolBar, DrawToolBar},
};

constexpr PieceRow asComplex[] = {
    {QStyle::CC_GroupBox, DrawGroupBox}, {QStyle::CC_ComboBox, DrawComboBox},   {QStyle::CC_SpinBox, DrawSpinBox},
    {QStyle::CC_Slider, DrawSlider},     {QStyle::CC_ScrollBar, DrawScrollBar},
};

struct NumberRow {
    int eKey;
    int nValue;
};

constexpr NumberRow asHint[] = {
    {QStyle::SH_Widget_Animation_Duration, 0}, // the processor belongs to the picture
    {QStyle::SH_ComboBox_Popup, 0},            // a list below the field, not a menu over it
    {QStyle::SH_DialogButtonBox_ButtonsHaveIcons, 0},
    {QStyle::SH_ToolTipLabel_Opacity, 255},
    {QStyle::SH_EtchDisabledText, 0},
    {QStyle::SH_DitherDisabledText, 0},
    {QStyle::SH_UnderlineShortcut, 1},
    {QStyle::SH_MenuBar_MouseTracking, 1},
    {QStyle::SH_Menu_SloppySubMenus, 1},
};

template <typename Element> bool DrawPiece(std::span<const PieceRow> rows, Element eElement, const DarkPiece &piece)
{
    const auto i = std::ranges::find(rows, static_cast<int>(eElement), &PieceRow::eElement);
    if (i == rows.end())
        return false;
    i->pfnDraw(piece);
    return true;
}

// A bar without an end to reach is left to the style below, which keeps it moving.
bool IsBusyBar(const QStyleOption *pOption)
{
    const auto *pBar = qstyleoption_cast<const QStyleOptionProgressBar *>(pOption);
    return pBar && pBar->minimum == 0 && pBar->maximum == 0;
}

void GiveColors()
{
    RefreshLook();
    const QPalette palette = MakeLookPalette();
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
}

void Restyle()
{
    bRestylePending = false;
    GiveColors();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::ApplicationPaletteChange); // no window paints in between
    for (QWidget *pWidget : QApplication::allWidgets()) {
        RefreshControlColors(pWidget);
        pWidget->update();
    }
}

// Settings change many rows in one go: the windows follow once.
void RestyleSoon(u32, void *)
{
    if (bRestylePending)
        return;
    bRestylePending = true;
    QMetaObject::invokeMethod(qApp, Restyle, Qt::QueuedConnection);
}

void ForgetApplication()
{
    UIColorListeners.Remove(RestyleSoon);
    bRestylePending = false;
}

} // namespace

DarkStyle::DarkStyle() : QProxyStyle(QStringLiteral("fusion"))
{
}

void DarkStyle::polish(QWidget *pWidget)
{
    QProxyStyle::polish(pWidget);
    CustomizeControl(pWidget);
}

QPalette DarkStyle::standardPalette() const
{
    return MakeLookPalette();
}

int DarkStyle::pixelMetric(PixelMetric eMetric, const QStyleOption *pOption, const QWidget *pWidget) const
{
    switch (eMetric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return pOption   ? pOption->fontMetrics.height()
               : pWidget ? pWidget->fontMetrics().height()
                         : QFontMetrics(QApplication::font()).height();
    case PM_RadioButtonLabelSpacing:
    case PM_CheckBoxLabelSpacing:
        return 5;
    case PM_SplitterWidth:
        return 6;
    default:
        return QProxyStyle::pixelMetric(eMetric, pOption, pWidget);
    }
}

int DarkStyle::styleHint(StyleHint eHint, const QStyleOption *pOption, const QWidget *pWidget,
                         QStyleHintReturn *pReturn) const
{
    const auto i = std::ranges::find(asHint, static_cast<int>(eHint), &NumberRow::eKey);
    return i != std::end(asHint) ? i->nValue : QProxyStyle::styleHint(eHint, pOption, pWidget, pReturn);
}

void DarkStyle::drawPrimitive(PrimitiveElement eElement, const QStyleOption *pOption, QPainter *pPainter,
                              const QWidget *pWidget) const
{
    if (!DrawPiece(asPrimitive, eElement, {this, pOption, pPainter, pWidget}))
        QProxyStyle::drawPrimitive(eElement, pOption, pPainter, pWidget);
}

void DarkStyle::drawControl(ControlElement eElement, const QStyleOption *pOption, QPainter *pPainter,
                            const QWidget *pWidget) const
{
    const DarkPiece piece = {this, pOption, pPainter, pWidget};
    if (eElement == CE_ItemViewItem)
        DrawItemTextBack(piece);
    const bool bBusy = eElement == CE_ProgressBarContents && IsBusyBar(pOption);
    if (bBusy || !DrawPiece(asControl, eElement, piece))
        QProxyStyle::drawControl(eElement, pOption, pPainter, pWidget);
}

void DarkStyle::drawComplexControl(ComplexControl eControl, const QStyleOptionComplex *pOption, QPainter *pPainter,
                                   const QWidget *pWidget) const
{
    if (!DrawPiece(asComplex, eControl, {this, pOption, pPainter, pWidget}))
        QProxyStyle::drawComplexControl(eControl, pOption, pPainter, pWidget);
}

QRect DarkStyle::subElementRect(SubElement eElement, const QStyleOption *pOption, const QWidget *pWidget) const
{
    switch (eElement) {
    case SE_CheckBoxIndicator:
        return CheckMarkRect(pOption, pWidget);
    case SE_CheckBoxContents:
    case SE_CheckBoxFocusRect:
        return CheckTextRect(pOption, pWidget);
    case SE_CheckBoxClickRect:
        return pOption->rect;
    case SE_PushButtonFocusRect:
        return pOption->rect.adjusted(2, 2, -2, -2);
    case SE_ProgressBarGroove:
    case SE_ProgressBarContents:
    case SE_ProgressBarLabel:
        return pOption->rect; // the text stands on the bar
    default:
        return QProxyStyle::subElementRect(eElement, pOption, pWidget);
    }
}

QRect DarkStyle::subControlRect(ComplexControl eControl, const QStyleOptionComplex *pOption, SubControl ePart,
                                const QWidget *pWidget) const
{
    const QRect below = QProxyStyle::subControlRect(eControl, pOption, ePart, pWidget);
    return eControl == CC_GroupBox ? GroupBoxRect(pOption, ePart, below) : below;
}

QSize DarkStyle::sizeFromContents(ContentsType eType, const QStyleOption *pOption, const QSize &size,
                                  const QWidget *pWidget) const
{
    if (eType == CT_CheckBox && pOption)
        return CheckBoxSize(pOption, pWidget);
    if (eType == CT_GroupBox && pOption)
        return GroupBoxSize(pOption, size);
    const QSize below = QProxyStyle::sizeFromContents(eType, pOption, size, pWidget);
    if (eType == CT_MenuItem && pOption)
        return MenuItemSize(pOption, below);
    if (eType == CT_RadioButton && pOption)
        return {below.width(), pOption->fontMetrics.height() + 2};
    if (eType == CT_ItemViewItem)
        return below + QSize(0, 3);
    return below;
}

QIcon DarkStyle::standardIcon(StandardPixmap eIcon, const QStyleOption *pOption, const QWidget *pWidget) const
{
    const QIcon icon = MakeMessageIcon(eIcon);
    return icon.isNull() ? QProxyStyle::standardIcon(eIcon, pOption, pWidget) : icon;
}

void InstallDarkLook(QApplication *pApp)
{
    ASSERT_MAIN_THREAD();
    if (!UIColorTable[0].pszName)
        SetDefaultUIColors();
    RefreshLook();
    QApplication::setStyle(new DarkStyle);
    GiveColors();
    UIColorListeners.Add(RestyleSoon);
    QObject::connect(pApp, &QObject::destroyed, ForgetApplication);
}
