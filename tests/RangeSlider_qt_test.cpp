// RangeSlider_qt_test.cpp -- the slider as a widget: mouse, keys, focus of the thumbs, what a screen reader hears
#include "toolkit/RangeSlider_qt.h"

#include "tests/WindowFixture.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QTest>

#include <memory>

namespace {

class SliderTest : public WindowTest {
  protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        SliderInfo info = {};
        info.fMaximum = 100;
        info.fRangeLow = 20;
        info.fRangeHigh = 80;
        info.bRangeMode = 1;
        pWindow = std::make_unique<QWidget>();
        auto *pLayout = new QHBoxLayout(pWindow.get());
        for (QWidget *p : {static_cast<QWidget *>(pBefore = new QLineEdit),
                           static_cast<QWidget *>(pSlider = new RangeSelectSlider(info)),
                           static_cast<QWidget *>(pBehind = new QLineEdit)})
            pLayout->addWidget(p);
        pSlider->setFixedSize(200, 22);
        pSlider->pfnChanged = [this] { nChanges++; };
        pSlider->pfnDrag = [this](bool bBegins) { sDrags += bBegins ? "b" : "e"; };
        pSlider->pfnDefault = [this](u32 dwThumb) { dwDefault = dwThumb; };
        pWindow->show();
        WaitFor([&] { return QTest::qWaitForWindowActive(pWindow.get()); });
    }

    std::unique_ptr<QWidget> pWindow;
    QLineEdit *pBefore, *pBehind;
    RangeSelectSlider *pSlider;
    int nChanges = 0;
    std::string sDrags;
    u32 dwDefault = THUMB_NONE;
};

TEST_F(SliderTest, ADragIsOneEditWithAChangeForEachStep)
{
    QTest::mousePress(pSlider, Qt::LeftButton, {}, QPoint(40, 3));
    QTest::mouseMove(pSlider, QPoint(60, 3));
    QTest::mouseMove(pSlider, QPoint(1000, 3));
    QTest::mouseRelease(pSlider, Qt::LeftButton, {}, QPoint(1000, 3));
    EXPECT_EQ("be", sDrags);
    EXPECT_EQ(2, nChanges);
    EXPECT_EQ(100, pSlider->Info.fRangeLow);
    QTest::mouseClick(pSlider, Qt::LeftButton, {}, QPoint(100, 11));
    EXPECT_EQ("be", sDrags) << "there is no thumb";
    QTest::mousePress(pSlider, Qt::LeftButton, {}, QPoint(160, 18));
    pSlider->hide();
    EXPECT_EQ("bebe", sDrags) << "a drag ends with its slider";
}

TEST_F(SliderTest, TheKeyboardReachesBothThumbsAndLeaves)
{
    pBefore->setFocus();
    QTest::keyClick(pBefore, Qt::Key_Tab);
    ASSERT_TRUE(pSlider->hasFocus());
    QTest::keyClick(pSlider, Qt::Key_Right);
    QTest::keyClick(pSlider, Qt::Key_PageUp);
    EXPECT_EQ(31, pSlider->Info.fRangeLow);
    QTest::keyClick(pSlider, Qt::Key_Tab);
    ASSERT_TRUE(pSlider->hasFocus());
    QTest::keyClick(pSlider, Qt::Key_Left);
    EXPECT_EQ(79, pSlider->Info.fRangeHigh);
    QTest::keyClick(pSlider, Qt::Key_Tab);
    EXPECT_TRUE(pBehind->hasFocus());
    QTest::keyClick(pBehind, Qt::Key_Backtab);
    EXPECT_EQ(THUMB_HIGH, pSlider->FocusedThumb());
    EXPECT_EQ(3, nChanges);
}

TEST_F(SliderTest, ADoubleClickAsksForTheDefaultOfTheThumbUnderIt)
{
    QTest::mouseDClick(pSlider, Qt::LeftButton, {}, QPoint(160, 18));
    EXPECT_EQ(THUMB_HIGH, dwDefault);
    dwDefault = THUMB_NONE;
    QTest::mouseDClick(pSlider, Qt::LeftButton, {}, QPoint(100, 18));
    EXPECT_EQ(THUMB_NONE, dwDefault);
}

TEST_F(SliderTest, AScreenReaderHearsAndSetsTheThumbThatKeysMove)
{
    QAccessibleInterface *pVoice = QAccessible::queryAccessibleInterface(pSlider);
    ASSERT_TRUE(pVoice && pVoice->valueInterface());
    EXPECT_EQ(QAccessible::Slider, pVoice->role());
    EXPECT_EQ(QStringLiteral("20 to 80"), pVoice->text(QAccessible::Value));
    pSlider->SetFocusedThumb(THUMB_HIGH);
    EXPECT_EQ(80, pVoice->valueInterface()->currentValue().toInt());
    pVoice->valueInterface()->setCurrentValue(250);
    EXPECT_EQ(100, pSlider->Info.fRangeHigh);
    EXPECT_EQ(1, nChanges);
}

} // namespace

int main(int argc, char **argv)
{
    return RunWindowTests(argc, argv, "1");
}
