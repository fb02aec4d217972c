// DialogPieces_qt_test.cpp -- tests DialogPieces_qt.cpp
#include "toolkit/DialogPieces_qt.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTest>
#include <QTextDocument>
#include <QTreeView>
#include <QWheelEvent>

namespace {

TEST(DialogPieces, AToolTipIsPlainAndNamesWhatHasNoName)
{
    QSlider slider;
    AddToolTip(&slider, "a <b>tip</b>");
    EXPECT_TRUE(slider.toolTip().contains("&lt;b&gt;"));
    QTextDocument shown;
    shown.setHtml(PlainTip("<h1>two</h1>\n\n  lines & 100%s"));
    EXPECT_EQ("<h1>two</h1>\n\n  lines & 100%s", shown.toPlainText());
    EXPECT_EQ("a <b>tip</b>", slider.accessibleName());
    AddToolTip(&slider, "another");
    EXPECT_EQ("a <b>tip</b>", slider.accessibleName());
}

TEST(DialogPieces, AComboSelectsTheWantedValueAndItsListIsAsWideAsItsTexts)
{
    QComboBox combo;
    EXPECT_EQ(-1, ComboValue(&combo, -1));
    const QString longText(200, 'm');
    AddComboItem(&combo, "one", 1, 0x100000002);
    AddComboItem(&combo, longText, 0x100000002, 0x100000002);
    AddComboItem(&combo, "three", 3, 0x100000002);
    EXPECT_EQ(0x100000002, ComboValue(&combo, -1));
    EXPECT_GE(combo.view()->minimumWidth(), combo.fontMetrics().horizontalAdvance(longText));
}

TEST(DialogPieces, ASliderShowsItsValueInItsField)
{
    QSlider slider(Qt::Horizontal);
    QSpinBox field;
    InitTrackBar(&slider, &field, {0, 10000, 5, 50}, 500, "Rest");
    EXPECT_EQ(500, field.value());
    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_EQ(505, field.value());
    QTest::keyClick(&slider, Qt::Key_PageUp);
    EXPECT_EQ(555, field.value());
    EXPECT_EQ("Rest", field.accessibleName());
    EXPECT_EQ(10000, field.maximum());
}

TEST(DialogPieces, AFloatHasItsDecimalsAndOnlyNumbersAreTaken)
{
    QLineEdit field;
    SetDlgItemFloat(&field, 2.0 / 3, 3);
    EXPECT_EQ("0.667", field.text());
    double f = 7;
    for (const char *pszNone : {"", "x", "1,5", "nan", "inf", "1e999"}) {
        field.setText(pszNone);
        EXPECT_FALSE(GetDlgItemFloat(&field, &f)) << pszNone;
    }
    EXPECT_EQ(7, f);
    field.setText("-0.25");
    EXPECT_TRUE(GetDlgItemFloat(&field, &f));
    EXPECT_EQ(-0.25, f);
}

TEST(DialogPieces, OnlyCtrlAndTheWheelChangeAListsFontWithinBounds)
{
    QTreeView view;
    QFont font = view.font();
    font.setPixelSize(14);
    view.setFont(font);
    ZoomListFont(&view);
    const auto turn = [&](int nDelta, Qt::KeyboardModifiers modifiers) {
        QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, nDelta}, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view.viewport(), &wheel);
        return view.font().pixelSize();
    };
    EXPECT_EQ(14, turn(120, Qt::NoModifier));
    EXPECT_EQ(15, turn(120, Qt::ControlModifier));
    EXPECT_EQ(15, turn(60, Qt::ControlModifier));
    EXPECT_EQ(16, turn(60, Qt::ControlModifier)) << "halves of a step";
    EXPECT_EQ(72, turn(120 * 500, Qt::ControlModifier));
    EXPECT_EQ(6, turn(-120 * 500, Qt::ControlModifier));
}

TEST(DialogPieces, AClickOnAHeadingSortsAndASecondOneFlips)
{
    QStandardItemModel model(0, 1);
    for (const char *psz : {"b", "a", "c"})
        model.appendRow(new QStandardItem(psz));
    QTreeView list;
    list.setModel(&model);
    list.resize(200, 200);
    ListColumnClickSort(&list, 0, false);
    EXPECT_EQ("a", model.item(0)->text());
    list.show();
    QTest::mouseClick(list.header()->viewport(), Qt::LeftButton, {}, {10, 5});
    EXPECT_EQ("c", model.item(0)->text());
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
