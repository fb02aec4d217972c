// DialogScaling_qt_test.cpp -- windows that scale, against the rules and against what the layouts gave
#include "toolkit/DialogScaling_qt.h"

#include "tests/WindowFixture.h"
#include "toolkit/SizingBand_qt.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

#include <map>
#include <memory>

namespace {

struct Seen {
    QRect place;
    QFont font;
};
using Sight = std::map<const QWidget *, Seen>;

class DialogScalingTest : public WindowTest {
  protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        pDialog = std::make_unique<QDialog>();
        auto *pLayout = new QVBoxLayout(pDialog.get());
        pLayout->addWidget(pText = new QLabel("A text that takes several lines, as descriptions of controls do, and "
                                              "that grows with the window"));
        pText->setWordWrap(true);
        pLayout->addWidget(MakeGroup());
        pLayout->addWidget(pHidden = new QPushButton("Hidden at first"));
        KeepPlaceWhenHidden(pHidden);
        pHidden->hide();
        pLayout->addWidget(pButton = new QPushButton("A button with a long text"));
        pLayout->addWidget(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
        EnableDialogScaling(pDialog.get());
        pDialog->show();
        design = pDialog->size();
    }
    QWidget *MakeGroup()
    {
        pGroup = new QGroupBox("Group");
        auto *pForm = new QFormLayout(pGroup);
        pForm->addRow("Source:", pCombo = new QComboBox);
        pCombo->addItems({"Fixed Value", "Periodically Randomized"});
        pForm->addRow("Value", pField = new QLineEdit("42"));
        auto *pRow = new QWidget;
        auto *pLine = new QHBoxLayout(pRow);
        pLine->setContentsMargins(0, 0, 0, 0);
        pLine->addWidget(pSlider = new QSlider(Qt::Horizontal));
        pLine->addWidget(pSpin = new QSpinBox);
        pSpin->setFixedWidth(70);
        pForm->addRow("Range", pRow);
        pForm->addRow(pCheck = new QCheckBox("Only Even"));
        pForm->addRow(pList = new QListWidget);
        pForm->addRow(pEdit = new QPlainTextEdit);
        return pGroup;
    }

    // All controls but the band's pieces, with their places in the window.
    Sight Look() const
    {
        Sight sight;
        const auto look = [](QWidget *p, void *pv) -> u32 {
            (*static_cast<Sight *>(pv))[p] = {QRect(p->mapTo(p->window(), QPoint()), p->size()), p->font()};
            return 1;
        };
        ForEachDialogChild(pDialog.get(), look, &sight, DIALOG_DEPTH);
        return sight;
    }
    void Resize(f64 fX, f64 fY) const
    {
        pDialog->resize(RoundAway(design.width() * fX), RoundAway(design.height() * fY));
    }
    ScaleFactors Factors() const
    {
        ScaleFactors factors;
        EXPECT_EQ(1u, GetDialogScale(pDialog.get(), &factors));
        return factors;
    }
    static QRect Scaled(const QRect &rc, const ScaleFactors &factors)
    {
        const WindowRect to = PlaceControl({rc.x(), rc.y(), rc.x() + rc.width(), rc.y() + rc.height()}, factors, 0);
        return {QPoint(to.left, to.top), QPoint(to.right - 1, to.bottom - 1)};
    }
    void ExpectSame(const Sight &before) const
    {
        const Sight now = Look();
        ASSERT_EQ(before.size(), now.size());
        for (const auto &[p, seen] : before) {
            EXPECT_EQ(seen.place, now.at(p).place) << p->metaObject()->className();
            EXPECT_EQ(seen.font, now.at(p).font) << p->metaObject()->className();
        }
    }

    std::unique_ptr<QDialog> pDialog;
    QSize design;
    QLabel *pText;
    QGroupBox *pGroup;
    QComboBox *pCombo;
    QLineEdit *pField;
    QSlider *pSlider;
    QSpinBox *pSpin;
    QCheckBox *pCheck;
    QListWidget *pList;
    QPlainTextEdit *pEdit;
    QPushButton *pHidden, *pButton;
};

constexpr ScaleFactors aFactors[] = {{1, 1}, {1.5f, 1.5f}, {2, 2}, {2.5f, 1}, {1, 2}, {1.25f, 1.75f}, {0.7f, 0.8f}};

TEST_F(DialogScalingTest, EveryControlGoesWhereTheRulesSayHoweverDeepItLies)
{
    const Sight before = Look();
    EXPECT_GE(before.size(), 14u);
    for (const ScaleFactors &wanted : aFactors) {
        Resize(wanted.fScaleX, wanted.fScaleY);
        const ScaleFactors factors = Factors();
        for (const auto &[p, seen] : Look())
            EXPECT_EQ(Scaled(before.at(p).place, factors), seen.place)
                << p->metaObject()->className() << " " << factors.fScaleX << " " << factors.fScaleY;
    }
}

TEST_F(DialogScalingTest, AtTheDesignSizeEverythingIsAsItWasLaidOut)
{
    const Sight before = Look();
    for (const ScaleFactors &wanted : aFactors) {
        Resize(wanted.fScaleX, wanted.fScaleY);
        pDialog->resize(design);
        ExpectSame(before);
    }
}

TEST_F(DialogScalingTest, OneFontFollowsTheFactorsAndListsAndTextsKeepTheirs)
{
    const ScaledFont lfDesign = ScaleInfoOf(pDialog.get())->lfDesign;
    const QFont list = pList->font();
    for (const ScaleFactors &wanted : {ScaleFactors{2, 2}, ScaleFactors{3, 2}, ScaleFactors{1.5f, 1.5f}}) {
        Resize(wanted.fScaleX, wanted.fScaleY);
        const ScaledFont lf = ScaleFont(lfDesign, Factors(), design.height());
        for (const QWidget *p : std::initializer_list<const QWidget *>{pText, pCombo, pField, pSpin, pCheck, pButton,
                                                                       pHidden, pGroup, pSlider}) {
            EXPECT_EQ(-lf.lfHeight, p->font().pixelSize()) << p->metaObject()->className();
            EXPECT_EQ(FontStretch(lf, lfDesign), p->font().stretch());
        }
        for (const QWidget *p : std::initializer_list<const QWidget *>{pList, pEdit})
            EXPECT_EQ(QFontInfo(list).pixelSize(), QFontInfo(p->font()).pixelSize());
    }
}

int WidthOf(const QFont &font, const QString &text)
{
    return QFontMetrics(font).horizontalAdvance(text);
}

TEST_F(DialogScalingTest, NoTextIsCutThatWasWholeAtTheDesignSize)
{
    for (const ScaleFactors &wanted :
         {ScaleFactors{1, 1}, ScaleFactors{2, 2}, ScaleFactors{1, 3}, ScaleFactors{1.1f, 1.4f}, ScaleFactors{3, 1},
          ScaleFactors{0.8f, 1}, ScaleFactors{0.9f, 1.5f}, ScaleFactors{0.6f, 0.9f}, ScaleFactors{0.5f, 0.5f}}) {
        Resize(wanted.fScaleX, wanted.fScaleY);
        SCOPED_TRACE(testing::Message() << wanted.fScaleX << " " << wanted.fScaleY);
        EXPECT_LE(WidthOf(pButton->font(), pButton->text()), pButton->width());
        EXPECT_LE(QFontMetrics(pButton->font()).height(), pButton->height());
        for (const QLabel *p : pGroup->findChildren<QLabel *>())
            EXPECT_LE(WidthOf(p->font(), p->text()), p->width());
        EXPECT_LE(pText->heightForWidth(pText->width()), pText->height());
    }
}

TEST_F(DialogScalingTest, LettersAreSqueezedWhereAWindowBecomesNarrowAndTheyCanBe)
{
    Resize(1, 2);
    EXPECT_LT(pField->font().stretch(), 60);
    EXPECT_NEAR(2 * -ScaleInfoOf(pDialog.get())->lfDesign.lfHeight, pField->font().pixelSize(), 2);
    QFont own = pField->font();
    own.setStretch(100);
    EXPECT_LT(WidthOf(pField->font(), "Periodically"), WidthOf(own, "Periodically") * 7 / 10);
}

TEST_F(DialogScalingTest, AHiddenControlIsInItsPlaceWhenItIsShown)
{
    const QRect place = pHidden->geometry();
    EXPECT_GT(place.top(), pGroup->geometry().bottom());
    EXPECT_GT(pButton->geometry().top(), place.bottom());
    Resize(2, 2);
    pHidden->show();
    EXPECT_EQ(Scaled(place, Factors()), pHidden->geometry());
    EXPECT_EQ(2 * design, pDialog->size());
}

TEST_F(DialogScalingTest, WhatIsHiddenMeanwhileKeepsItsPlaceInADesignThatIsTakenAgain)
{
    const Sight before = Look();
    Resize(2, 2);
    pGroup->hide();
    TakeDesignAgain(pDialog.get());
    EXPECT_EQ(2 * design, pDialog->size());
    pDialog->resize(design);
    pGroup->show();
    ExpectSame(before);
}

TEST_F(DialogScalingTest, AControlMadeWhileStretchedTakesItsPlaceAtOnce)
{
    Resize(2, 2);
    auto *pLate = new QPushButton("late", pDialog.get());
    pLate->setGeometry(40, 60, 100, 50);
    pLate->show();
    EXPECT_EQ(QRect(40, 60, 100, 50), pLate->geometry());
    EXPECT_EQ(pButton->font(), pLate->font());
    pDialog->resize(design);
    EXPECT_EQ(QRect(20, 30, 50, 25), pLate->geometry());
    ScaleInfoOf(pDialog.get())->bRawChildRects = 1;
    Resize(2, 2);
    auto *pRaw = new QPushButton("raw", pDialog.get());
    pRaw->setGeometry(10, 10, 40, 20);
    pRaw->show();
    EXPECT_EQ(QRect(20, 20, 80, 40), pRaw->geometry());
}

TEST_F(DialogScalingTest, AControlPutIntoALayoutWhileStretchedMakesTheWindowGrow)
{
    Resize(2, 2);
    auto *pSub = new QGroupBox("Sub-panel");
    (new QHBoxLayout(pSub))->addWidget(new QLineEdit("inside"));
    pDialog->layout()->addWidget(pSub);
    pSub->show();
    EXPECT_GT(pSub->geometry().top(), pButton->geometry().bottom());
    EXPECT_LT(pSub->geometry().bottom(), pDialog->height() - SIZING_BAND);
    EXPECT_NEAR(2, Factors().fScaleY, 0.01);
    EXPECT_GT(pDialog->height(), 2 * design.height());
    EXPECT_EQ(pButton->font(), pSub->findChild<QLineEdit *>()->font());
}

TEST_F(DialogScalingTest, APanelInAPanelThatScalesAsWellIsScaledOnce)
{
    Resize(2, 2);
    auto *pSub = new QDialog(pDialog.get());
    pSub->setWindowFlags(Qt::Widget);
    auto *pInner = new QLineEdit("inside");
    pInner->setFixedHeight(30);
    (new QHBoxLayout(pSub))->addWidget(pInner);
    EnableDialogScaling(pSub);
    pSub->setGeometry(20, 20, 200, 120);
    pSub->show();
    EXPECT_EQ(QRect(20, 20, 200, 120), pSub->geometry());
    EXPECT_EQ(60, pInner->height());
    EXPECT_EQ(pButton->font(), pInner->font());
    const Sight before = Look();
    TakeDesignAgain(pDialog.get());
    ExpectSame(before);
    pDialog->resize(design);
    EXPECT_EQ(QSize(100, 60), pSub->size());
    EXPECT_EQ(30, pInner->height());
}

TEST_F(DialogScalingTest, DialogsInDialogsAreWalkedTwoDeep)
{
    QWidget window;
    QWidget *pParent = &window;
    std::vector<QWidget *> apPanel;
    for (int i = 0; i < 4; i++) {
        apPanel.push_back(new QDialog(pParent));
        apPanel.back()->setWindowFlags(Qt::Widget);
        (new QVBoxLayout(pParent))->addWidget(apPanel.back());
        pParent = apPanel.back();
    }
    std::vector<QWidget *> apWalked;
    const auto walk = [](QWidget *p, void *pv) -> u32 {
        static_cast<std::vector<QWidget *> *>(pv)->push_back(p);
        return 1;
    };
    EXPECT_EQ(1u, ForEachDialogChild(&window, walk, &apWalked, DIALOG_DEPTH));
    apPanel.pop_back();
    EXPECT_EQ(apPanel, apWalked);
    const auto stop = [](QWidget *, void *pv) -> u32 { return --*static_cast<int *>(pv) > 0; };
    int nLeft = 2;
    EXPECT_EQ(0u, ForEachDialogChild(&window, stop, &nLeft, DIALOG_DEPTH));
    EXPECT_EQ(0, nLeft);
}

TEST_F(DialogScalingTest, WhatIsInAScrollAreaOrOnPagesIsLeftToThem)
{
    auto *pArea = new QScrollArea;
    auto *pInside = new QPushButton("in a scroll area");
    pArea->setWidget(pInside);
    auto *pPages = new QTabWidget;
    auto *pPage = new QWidget;
    auto *pInner = new QLineEdit("on a page");
    (new QVBoxLayout(pPage))->addWidget(pInner);
    pPages->addTab(pPage, "Page");
    QDialog dialog;
    auto *pLayout = new QVBoxLayout(&dialog);
    pLayout->addWidget(pArea);
    pLayout->addWidget(pPages);
    EnableDialogScaling(&dialog);
    const QSize size = dialog.size();
    const QFont font = pInside->font();
    dialog.show();
    const QRect inside = pInside->geometry();
    dialog.resize(size * 2);
    EXPECT_EQ(inside, pInside->geometry());
    EXPECT_EQ(font, pInside->font());
    EXPECT_GT(pPage->width(), size.width());
    EXPECT_GT(pInner->width(), pPage->width() / 2);
    EXPECT_EQ(2 * QFontInfo(font).pixelSize(), pInner->font().pixelSize());
    dialog.resize(size);
    EXPECT_EQ(font, pInner->font());
}

TEST_F(DialogScalingTest, AListKeepsTheFontThatItsUserChoseMeanwhile)
{
    QFont font = pList->font();
    for (const f64 f : {1.0, 2.0}) {
        Resize(f, f);
        font.setPixelSize(RoundAway(17 * f));
        pList->setFont(font);
        Resize(1.5, 1.5);
        EXPECT_EQ(font.pixelSize(), pList->font().pixelSize());
        pDialog->resize(design);
        EXPECT_EQ(font.pixelSize(), pList->font().pixelSize());
    }
}

TEST_F(DialogScalingTest, AControlThatGoesLeavesTheOthersInPeace)
{
    Sight before = Look();
    Resize(1.5, 1.5);
    before.erase(pSpin);
    delete pSpin;
    for (const QWidget *p : pGroup->findChildren<QWidget *>())
        if (pGroup->isAncestorOf(p) && pEdit->isAncestorOf(p))
            before.erase(p);
    delete pEdit;
    before.erase(pEdit);
    pDialog->resize(design);
    ExpectSame(before);
    ReleaseScaleInfo(pDialog.get());
    Resize(2, 2);
    EXPECT_EQ(nullptr, ScaleInfoOf(pButton));
    ExpectSame(before);
    ScaleFactors factors;
    EXPECT_EQ(0u, GetDialogScale(pDialog.get(), &factors));
    EXPECT_EQ(1, factors.fScaleX);
}

TEST_F(DialogScalingTest, AComboBoxHasAWideListOfEightEntries)
{
    for (const f64 f : {1.0, 2.0, 0.8}) {
        Resize(f, f);
        EXPECT_EQ(std::max(pCombo->view()->minimumWidth(), RoundAway(pCombo->width() * 1.5)),
                  pCombo->view()->minimumWidth());
        EXPECT_GE(pCombo->maxVisibleItems(), 8);
    }
    pCombo->view()->setMinimumWidth(2000);
    Resize(1.2, 1.2);
    EXPECT_EQ(2000, pCombo->view()->minimumWidth()) << "a long text needs it";
}

TEST_F(DialogScalingTest, AnotherFontOfTheUserGivesAnotherDesign)
{
    Resize(2, 2);
    const QFont before = QApplication::font();
    QFont larger = before;
    larger.setPixelSize(2 * QFontInfo(before).pixelSize());
    QApplication::setFont(larger);
    WaitFor([&] { return pDialog->height() > 2.2 * design.height(); });
    EXPECT_NEAR(2, Factors().fScaleY, 0.02);
    const QSize large = pDialog->size() / 2;
    pDialog->resize(ScaleInfoOf(pDialog.get())->rcDesign.right, ScaleInfoOf(pDialog.get())->rcDesign.bottom);
    EXPECT_EQ(larger.pixelSize(), pButton->font().pixelSize());
    EXPECT_GE(pButton->height(), QFontMetrics(larger).height());
    EXPECT_NEAR(large.height(), pDialog->height(), 2);
    QApplication::setFont(before);
    WaitFor([&] { return pDialog->size() == design; });
}

TEST_F(DialogScalingTest, AnotherScreenGivesAnotherDesign)
{
    QWindow *pWindow = pDialog->windowHandle();
    const std::function<void()> aChange[] = {
        [&] { pWindow->screenChanged(pWindow->screen()); },
        [&] { pWindow->screen()->logicalDotsPerInchChanged(120); },
    };
    for (const auto &change : aChange) {
        const int nBefore = pDialog->width();
        pButton->setText(pButton->text() + pButton->text()); // whatever differs there
        QCoreApplication::processEvents();
        EXPECT_EQ(nBefore, pDialog->width());
        change();
        WaitFor([&] { return pDialog->width() > nBefore; });
    }
}

TEST_F(DialogScalingTest, TakingTheDesignAgainWithoutAChangeChangesNothing)
{
    for (const f64 f : {1.0, 1.7}) {
        Resize(f, f);
        const Sight before = Look();
        const QSize size = pDialog->size();
        TakeDesignAgain(pDialog.get());
        EXPECT_EQ(size, pDialog->size());
        ExpectSame(before);
    }
}

TEST_F(DialogScalingTest, AWindowThatIsRestyledStandsAsBefore)
{
    Resize(1.6, 1.3);
    const Sight before = Look();
    for (QWidget *p : pDialog->findChildren<QWidget *>())
        QCoreApplication::sendEvent(p, std::make_unique<QEvent>(QEvent::StyleChange).get());
    QCoreApplication::sendEvent(pDialog.get(), std::make_unique<QEvent>(QEvent::StyleChange).get());
    QCoreApplication::processEvents();
    ExpectSame(before);
}

TEST_F(DialogScalingTest, AMenuBarIsAsWideAsTheWindowAndNeverHigher)
{
    QWidget window;
    auto *pLayout = new QVBoxLayout(&window);
    auto *pBar = new QMenuBar;
    pBar->addMenu("&File");
    pLayout->setMenuBar(pBar);
    auto *pChild = new QPushButton("child");
    pLayout->addWidget(pChild);
    window.setFixedWidth(300);
    window.resize(300, 200);
    EnableDialogScaling(&window);
    window.show();
    const int nBar = pBar->height();
    const QRect place = pChild->geometry().translated(0, -nBar);
    EXPECT_EQ(QRect(0, 0, 300, nBar), pBar->geometry());
    window.resize(300, nBar + 2 * (200 - nBar));
    EXPECT_EQ(QRect(0, 0, 300, nBar), pBar->geometry());
    EXPECT_EQ(Scaled(place, {1, 2}).translated(0, nBar), pChild->geometry());
    EXPECT_EQ(300, window.minimumWidth());
    EXPECT_EQ(nBar + (200 - nBar) / 2, window.minimumHeight());
}

TEST_F(DialogScalingTest, AWindowOpensInTheSizeThatItHadLast)
{
    pDialog->hide();
    Resize(2, 2);
    pDialog->show();
    EXPECT_EQ(2 * design, pDialog->size());
    EXPECT_NEAR(2 * -ScaleInfoOf(pDialog.get())->lfDesign.lfHeight, pButton->font().pixelSize(), 1);
    pDialog->resize(design);
    EXPECT_EQ(QFontInfo(QApplication::font()).pixelSize(), QFontInfo(pButton->font()).pixelSize());
}

// What the pointer looks like there.
Qt::CursorShape CursorAt(QWidget *pWindow, const QPoint &at)
{
    QWidget *pPiece = pWindow->childAt(at);
    if (!pPiece)
        return Qt::BlankCursor;
    QMouseEvent move(QEvent::MouseMove, pPiece->mapFrom(pWindow, at), pWindow->mapToGlobal(at), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(pPiece, &move);
    return pPiece->cursor().shape();
}

TEST_F(DialogScalingTest, TheBandIsFreeAndShowsWhatCanBeMoved)
{
    for (const f64 f : {1.0, 2.0, 0.5}) {
        Resize(f, f);
        const int x = pDialog->width(), y = pDialog->height();
        EXPECT_EQ(Qt::SizeHorCursor, CursorAt(pDialog.get(), {2, y / 2}));
        EXPECT_EQ(Qt::SizeVerCursor, CursorAt(pDialog.get(), {x / 2, y - 1}));
        EXPECT_EQ(Qt::SizeFDiagCursor, CursorAt(pDialog.get(), {x - 2, y - 8}));
        EXPECT_EQ(Qt::SizeBDiagCursor, CursorAt(pDialog.get(), {8, y - 2}));
        const QRect free = pDialog->rect().adjusted(SIZING_BAND, 0, -SIZING_BAND, -SIZING_BAND);
        for (const auto &[p, seen] : Look())
            EXPECT_TRUE(free.contains(seen.place)) << p->metaObject()->className() << f;
    }
    EXPECT_EQ(QSize(design.width() / 2, design.height() / 2), pDialog->minimumSize());
    QWidget *pTold = nullptr;
    const auto hear = [](QWidget *pWindow, void *pv) { *static_cast<QWidget **>(pv) = pWindow; };
    SizingBandListeners.Add(hear, &pTold);
    QTest::mousePress(pDialog->childAt(2, 30), Qt::LeftButton);
    EXPECT_EQ(pDialog.get(), pTold);
    pTold = nullptr;
    QTest::mousePress(pDialog->childAt(2, 30), Qt::RightButton);
    SizingBandListeners.Remove(hear, &pTold);
    EXPECT_EQ(nullptr, pTold);
    pDialog->setFixedWidth(pDialog->width());
    EXPECT_EQ(Qt::ArrowCursor, CursorAt(pDialog.get(), {2, pDialog->height() / 2}));
    EXPECT_EQ(Qt::SizeVerCursor, CursorAt(pDialog.get(), {8, pDialog->height() - 2}));
}

constexpr char SCALE[] = "DIALOG_SCALING_TEST_SCALE"; // of the screen

TEST(DialogScalingScreens, AllOfItHoldsOnDenseScreens)
{
    if (qEnvironmentVariableIsSet(SCALE))
        GTEST_SKIP() << "this is one of them";
    for (const char *pszScale : {"1.5", "2"}) {
        QProcess tests;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(SCALE, pszScale);
        tests.setProcessEnvironment(environment);
        tests.start(QCoreApplication::applicationFilePath(), {"--gtest_brief=1"});
        EXPECT_TRUE(tests.waitForFinished(-1));
        EXPECT_EQ(0, tests.exitCode()) << pszScale << tests.readAllStandardOutput().toStdString();
    }
}

} // namespace

int main(int argc, char **argv)
{
    return RunWindowTests(argc, argv, qEnvironmentVariable(SCALE, "1").toUtf8());
}
