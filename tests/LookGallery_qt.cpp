// LookGallery_qt.cpp -- a window with every standard control in its states, for eyes and for tests
#include "tests/LookGallery_qt.h"

#include "toolkit/ControlColors_qt.h"
#include "toolkit/Meters_qt.h"
#include "toolkit/UIColors.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QGroupBox *MakeGroup(const char *pszCaption)
{
    auto *pGroup = new QGroupBox(QString::fromUtf8(pszCaption));
    new QVBoxLayout(pGroup);
    return pGroup;
}

template <typename Control> Control *Add(QWidget *pTo, Control *pControl, const char *pszName = "")
{
    pControl->setObjectName(QString::fromUtf8(pszName));
    pTo->layout()->addWidget(pControl);
    return pControl;
}

template <typename Control> Control *Disable(Control *pControl)
{
    pControl->setEnabled(false);
    return pControl;
}

QWidget *MakeButtons()
{
    QGroupBox *pGroup = MakeGroup("&Buttons");
    Add(pGroup, new QPushButton("&Default"))->setDefault(true);
    Add(pGroup, new QPushButton("Another"), "button");
    Disable(Add(pGroup, new QPushButton("Disabled")));
    auto *pPushed = Add(pGroup, new QPushButton("True/On"));
    pPushed->setCheckable(true);
    pPushed->setChecked(true);
    auto *pMenu = new QMenu(pPushed);
    pMenu->addAction("Entry");
    Add(pGroup, new QPushButton("With a menu"))->setMenu(pMenu);
    auto *pTool = Add(pGroup, new QToolButton);
    pTool->setText("Tool");
    return pGroup;
}

QCheckBox *AddCheck(QWidget *pTo, const char *pszText, const char *pszName, CheckPlacement ePlacement)
{
    auto *pBox = Add(pTo, new QCheckBox(QString::fromUtf8(pszText)), pszName);
    pBox->setChecked(true);
    SetCheckPlacement(pBox, ePlacement);
    return pBox;
}

QWidget *MakeChecks()
{
    QGroupBox *pGroup = MakeGroup("Marks");
    AddCheck(pGroup, "&Shuffle", "checkLeft", CheckPlacement::MarkLeft);
    AddCheck(pGroup, "Text on the left", "checkTextLeft", CheckPlacement::TextLeft);
    AddCheck(pGroup, "Right-aligned", "checkRight", CheckPlacement::RightAligned);
    AddCheck(pGroup, "Centred", "checkCentred", CheckPlacement::Centred);
    Disable(AddCheck(pGroup, "Disabled", "checkDisabled", CheckPlacement::MarkLeft));
    auto *pThird = Add(pGroup, new QCheckBox("Partly"));
    pThird->setTristate(true);
    pThird->setCheckState(Qt::PartiallyChecked);
    Add(pGroup, new QCheckBox("Off"));
    Add(pGroup, new QRadioButton("Sound"))->setChecked(true);
    Add(pGroup, new QRadioButton("Wave"));
    Disable(Add(pGroup, new QRadioButton("Random")));
    return pGroup;
}

QWidget *MakeFields()
{
    QGroupBox *pGroup = MakeGroup("Fields");
    auto *pEdit = Add(pGroup, new QLineEdit("Selected text"), "edit");
    pEdit->setSelection(0, 8);
    Add(pGroup, new QLineEdit)->setPlaceholderText("Search");
    Disable(Add(pGroup, new QLineEdit("Disabled")));
    auto *pCombo = Add(pGroup, new QComboBox, "combo");
    pCombo->addItems({"Fixed Value", "Random", "Sine Wave", "Sound Level"});
    auto *pEditable = Add(pGroup, new QComboBox);
    pEditable->setEditable(true);
    pEditable->addItem("1280 x 720");
    Disable(Add(pGroup, new QComboBox))->addItem("Disabled");
    Add(pGroup, new QSpinBox)->setValue(60);
    auto *pFloat = Add(pGroup, new QDoubleSpinBox);
    pFloat->setRange(0, 1);
    pFloat->setValue(1); // the step up is out
    Disable(Add(pGroup, new QSpinBox));
    return pGroup;
}

QSlider *MakeSlider(Qt::Orientation eOrientation)
{
    auto *pSlider = new QSlider(eOrientation);
    pSlider->setRange(0, 100);
    pSlider->setValue(35);
    pSlider->setTickInterval(10);
    pSlider->setTickPosition(QSlider::TicksBelow);
    return pSlider;
}

class MeterField : public QWidget {
    QSize sizeHint() const override
    {
        return {200, 18};
    }
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        DrawMeterBar(&painter, 0, width(), height(), 0.62f, &PeakStores[0], UIColorTable[UICOLOR_METER_LOW].dwColor,
                     UIColorTable[UICOLOR_METER_HIGH].dwColor);
    }
};

class ProgressField : public QWidget {
    QSize sizeHint() const override
    {
        return {200, 18};
    }
    void paintEvent(QPaintEvent *) override
    {
        ShowProgressBar(this, 0.5f, UIColorTable[UICOLOR_METER_LOW].dwColor, UIColorTable[UICOLOR_METER_HIGH].dwColor,
                        QStringLiteral("512 of 1024"));
    }
};

QWidget *MakeBars()
{
    QGroupBox *pGroup = MakeGroup("Bars");
    Add(pGroup, MakeSlider(Qt::Horizontal), "slider");
    Disable(Add(pGroup, MakeSlider(Qt::Horizontal)));
    Add(pGroup, new QProgressBar, "progress")->setValue(70);
    Add(pGroup, new MeterField);
    Add(pGroup, new ProgressField);
    auto *pScroll = Add(pGroup, new QScrollBar(Qt::Horizontal));
    pScroll->setRange(0, 100);
    pScroll->setPageStep(30);
    pScroll->setValue(40);
    auto *pRow = new QWidget;
    auto *pRowLayout = new QHBoxLayout(pRow);
    pRowLayout->addWidget(MakeSlider(Qt::Vertical));
    auto *pUpright = new QProgressBar;
    pUpright->setOrientation(Qt::Vertical);
    pUpright->setValue(40);
    pRowLayout->addWidget(pUpright);
    Add(pGroup, pRow);
    return pGroup;
}

QWidget *MakeTree()
{
    auto *pTree = new QTreeWidget;
    pTree->setObjectName("tree");
    pTree->setHeaderHidden(true);
    auto *pRoot = new QTreeWidgetItem(pTree, {"Preset"});
    auto *pPlanes = new QTreeWidgetItem(pRoot, {"Planes"});
    for (const char *pszPlane : {"Plane 1", "Plane 2"}) {
        auto *pPlane = new QTreeWidgetItem(pPlanes, {QString::fromUtf8(pszPlane)});
        new QTreeWidgetItem(pPlane, {"Colors"});
        new QTreeWidgetItem(new QTreeWidgetItem(pPlane, {"Drawing"}), {"Gust"});
    }
    new QTreeWidgetItem(pRoot, {"Mixer"});
    pTree->expandAll();
    pTree->setCurrentItem(pPlanes);
    return pTree;
}

QWidget *MakeList()
{
    auto *pList = new QTreeWidget;
    pList->setObjectName("list");
    pList->setRootIsDecorated(false);
    pList->setHeaderLabels({"Name", "Favor", "Date"});
    pList->setSortingEnabled(true);
    for (int n = 1; n <= 30; n++)
        new QTreeWidgetItem(
            pList, {QStringLiteral("Preset %1").arg(n, 2, 10, QChar(u'0')), QString::number(n % 7), "2026-03-01"});
    pList->sortByColumn(0, Qt::AscendingOrder);
    pList->setCurrentItem(pList->topLevelItem(2));
    ApplyListColors(pList);
    return pList;
}

QWidget *MakeText()
{
    auto *pText = new QTextBrowser;
    pText->setObjectName("text");
    pText->setPlainText(
        "Frames Per Second\nOverall:\t59.94\nRecent:\t60.00\n\nSee https://example.org/manual, or write "
        "to mailto:team@example.org.");
    ApplyRichEditColors(pText);
    return pText;
}

QWidget *MakePages()
{
    auto *pTabs = new QTabWidget;
    pTabs->addTab(MakeList(), "List");
    pTabs->addTab(MakeText(), "Text");
    pTabs->addTab(new QWidget, "Disabled");
    pTabs->setTabEnabled(2, false);
    auto *pSplitter = new QSplitter;
    pSplitter->addWidget(MakeTree());
    pSplitter->addWidget(pTabs);
    pSplitter->addWidget(MakeText());
    return pSplitter;
}

QWidget *MakeGroups()
{
    QGroupBox *pGroup = MakeGroup("Group boxes");
    auto *pCheckable = Add(pGroup, MakeGroup("With a mark"));
    pCheckable->setCheckable(true);
    Add(pCheckable, new QLabel("Window Text"));
    auto *pDisabled = Disable(Add(pGroup, MakeGroup("Disabled")));
    Add(pDisabled, new QLabel("Window Text"));
    auto *pNoCaption = Add(pGroup, MakeGroup(""));
    Add(pNoCaption, new QLabel("Without a caption"));
    Add(pGroup, new QLabel("<a href=\"https://example.org\">A link</a> in a text"));
    return pGroup;
}

void FillMenus(QMainWindow *pWindow)
{
    QMenu *pMenu = pWindow->menuBar()->addMenu("&Display");
    pMenu->setObjectName("menu");
    pMenu->addAction("Display frame rate\tF")->setCheckable(true);
    pMenu->addAction("Display preset name\tT")->setCheckable(true);
    pMenu->actions().front()->setChecked(true);
    pMenu->addSeparator();
    pMenu->addMenu("Window Size")->addAction("640 x 480 (480p)");
    pMenu->addAction("Disabled\tCtrl+D")->setEnabled(false);
    pMenu->addAction("E&xit");
    pWindow->menuBar()->addMenu("&Help")->addAction("About");
    pWindow->statusBar()->showMessage("60.00 frames per second");
}

} // namespace

QWidget *MakeLookGallery()
{
    auto *pWindow = new QMainWindow;
    pWindow->setWindowTitle(QStringLiteral("Standard controls"));
    auto *pAll = new QWidget;
    auto *pLayout = new QVBoxLayout(pAll);
    auto *pRow = new QHBoxLayout;
    for (QWidget *pGroup : {MakeButtons(), MakeChecks(), MakeFields(), MakeBars(), MakeGroups()}) {
        static_cast<QVBoxLayout *>(pGroup->layout())->addStretch();
        pRow->addWidget(pGroup);
    }
    pLayout->addLayout(pRow);
    pLayout->addWidget(MakePages(), 1);
    pWindow->setCentralWidget(pAll);
    FillMenus(pWindow);
    pWindow->resize(1080, 700);
    return pWindow;
}
