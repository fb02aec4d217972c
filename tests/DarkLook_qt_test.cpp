// DarkLook_qt_test.cpp -- tests DarkStyle_qt.cpp and ControlColors_qt.cpp on the real controls, without a display
#include "tests/LookGallery_qt.h"
#include "tests/WindowFixture.h"
#include "toolkit/ControlColors_qt.h"
#include "toolkit/DarkPaint_qt.h"
#include "toolkit/DarkStyle_qt.h"
#include "toolkit/Meters_qt.h"
#include "toolkit/UIColors.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>

namespace {

constexpr u32 TEXT = 0x8CFFFF;
constexpr u32 BACK = 0x000000;

// The user's colours are the program's own at the start of each test.
class DarkLook : public WindowTest {};

QImage Paint(QWidget *pWidget)
{
    pWidget->ensurePolished();
    return pWidget->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

u32 ColorAt(const QImage &image, int x, int y)
{
    return ColorFrom(image.pixelColor(x, y));
}

// First and last column of that row with the colour; -1 for none.
QPoint ColumnsOf(const QImage &image, int y, u32 dwColor)
{
    QPoint columns(-1, -1);
    for (int x = 0; x < image.width(); x++)
        if (ColorAt(image, x, y) == dwColor)
            columns = QPoint(columns.x() < 0 ? x : columns.x(), x);
    return columns;
}

int FirstInk(const QImage &image, int y, int xFrom)
{
    while (xFrom < image.width() && ColorAt(image, xFrom, y) == BACK)
        xFrom++;
    return xFrom;
}

bool HasColor(const QImage &image, u32 dwColor)
{
    for (int y = 0; y < image.height(); y++)
        if (ColumnsOf(image, y, dwColor).x() >= 0)
            return true;
    return false;
}

int ColorCount(const QImage &image)
{
    std::set<QRgb> colors;
    for (int y = 0; y < image.height(); y++)
        for (int x = 0; x < image.width(); x++)
            colors.insert(image.pixel(x, y));
    return static_cast<int>(colors.size());
}

void Click(QWidget *pWidget, const QPointF &place)
{
    for (const QEvent::Type eType : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const Qt::MouseButtons held = eType == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(eType, place, pWidget->mapToGlobal(place), Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(pWidget, &event);
    }
}

// Columns of the group box's top line that are the background's: what the caption covers.
QPoint CaptionGap(const QString &caption)
{
    QGroupBox box(caption);
    box.resize(900, 60);
    const QImage image = Paint(&box);
    const int yLine = box.fontMetrics().height() / 2;
    EXPECT_EQ(TEXT, ColorAt(image, 0, yLine));
    EXPECT_EQ(TEXT, ColorAt(image, 899, 59));
    EXPECT_EQ(BACK, ColorAt(image, 0, yLine - 1));
    EXPECT_EQ(BACK, ColorAt(image, 450, 40));
    QPoint gap(-1, -1);
    for (int x = 0; x < 900; x++)
        if (ColorAt(image, x, yLine) == BACK)
            gap = QPoint(gap.x() < 0 ? x : gap.x(), x);
    return gap;
}

TEST_F(DarkLook, AGroupBoxHasItsCaptionInBracketsOverItsOutline)
{
    const QFontMetrics metrics(QApplication::font());
    const QPoint gap = CaptionGap("Sound");
    EXPECT_EQ(10, gap.x());
    EXPECT_NEAR(10 + metrics.horizontalAdvance("[ Sound ]") - 1, gap.y(), 2);
    EXPECT_EQ(-1, CaptionGap("").x()) << "without a caption the outline is whole";
    const QString many(64, u'x');
    EXPECT_EQ(CaptionGap(many), CaptionGap(many + "more"));
}

TEST_F(DarkLook, AGroupBoxKeepsItsContentsOffItsCaption)
{
    QGroupBox box("Sound");
    auto *pLayout = new QVBoxLayout(&box);
    pLayout->setContentsMargins(0, 0, 0, 0);
    auto *pInside = new QLabel("x");
    pLayout->addWidget(pInside);
    box.setCheckable(true);
    box.setChecked(false);
    box.resize(box.minimumSizeHint());
    Paint(&box);
    EXPECT_GE(pInside->geometry().top(), box.fontMetrics().height());
    const int nCaption = box.fontMetrics().horizontalAdvance("[ Sound ]");
    EXPECT_GE(box.width(), 10 + box.fontMetrics().height() + 5 + nCaption) << "the caption fits";

    Click(&box, QPoint(14, box.fontMetrics().height() / 2));
    EXPECT_TRUE(box.isChecked());
}

struct MarkCase {
    CheckPlacement ePlacement;
    int xMark;
    int xText;
};

TEST_F(DarkLook, ACheckBoxHasItsMarkWhereThePlacementSaysAndIsClickableAllOver)
{
    const QFontMetrics metrics(QApplication::font());
    const int nSide = metrics.height();
    const int nBlock = nSide + 5 + metrics.size(Qt::TextShowMnemonic | Qt::TextSingleLine, "HHH").width();
    const int xBlock = (200 - nBlock) / 2;
    for (const MarkCase &c :
         {MarkCase{CheckPlacement::MarkLeft, 0, nSide + 5}, MarkCase{CheckPlacement::TextLeft, 200 - 5 - nSide, 5},
          MarkCase{CheckPlacement::RightAligned, 200 - nSide, 0},
          MarkCase{CheckPlacement::Centred, xBlock, xBlock + nSide + 5}}) {
        QCheckBox box("HHH");
        SetCheckPlacement(&box, c.ePlacement);
        box.resize(200, 30);
        const QImage image = Paint(&box);
        const QPoint frame = ColumnsOf(image, 15, Look().dwLine);
        EXPECT_EQ(QPoint(c.xMark, c.xMark + nSide - 1), frame) << static_cast<int>(c.ePlacement);
        const bool bMarkFirst = c.xMark < c.xText;
        EXPECT_NEAR(c.xText, FirstInk(image, 15, bMarkFirst ? c.xMark + nSide : 0), 3)
            << static_cast<int>(c.ePlacement);
        Click(&box, QPoint(c.xText + 8, 15));
        EXPECT_TRUE(box.isChecked());
        EXPECT_GT(ColorCount(Paint(&box)), ColorCount(image)) << "the tick shows";
    }
}

TEST_F(DarkLook, ADisabledCheckBoxIsGray)
{
    QCheckBox box("Shuffle");
    box.setChecked(true);
    EXPECT_TRUE(HasColor(Paint(&box), TEXT));
    box.setEnabled(false);
    const QImage gray = Paint(&box);
    EXPECT_FALSE(HasColor(gray, TEXT));
    EXPECT_TRUE(HasColor(gray, Look().dwDisabled));
}

TEST_F(DarkLook, ANewUserColourShowsInAllWindowsAtOnce)
{
    const std::unique_ptr<QWidget> pGallery(MakeLookGallery());
    Paint(pGallery.get());
    auto *pText = pGallery->findChild<QTextBrowser *>("text");
    SetUIColor(UICOLOR_WINDOW_BACKGROUND, 0x402000);
    SetUIColor(UICOLOR_WINDOW_TEXT, 0x00FF80);
    SetUIColor(UICOLOR_TREE_BACKGROUND, 0x000030);
    SetUIColor(UICOLOR_LIST_TEXT, 0x112233);
    SetUIColor(UICOLOR_METER_LOW, 0xFF0000);
    QCoreApplication::processEvents();
    EXPECT_EQ(0x402000u, ColorAt(Paint(pGallery.get()), 2, 100));
    EXPECT_TRUE(HasColor(Paint(pGallery->findChild<QGroupBox *>()), 0x00FF80));
    EXPECT_TRUE(HasColor(Paint(pGallery->findChild<QWidget *>("tree")), 0x000030));
    EXPECT_TRUE(HasColor(Paint(pGallery->findChild<QWidget *>("list")), 0x112233));
    EXPECT_TRUE(HasColor(Paint(pText), 0x00FF80)) << "a text that is already there too";
    EXPECT_FALSE(HasColor(Paint(pText), TEXT));
    const QImage bar = Paint(pGallery->findChild<QWidget *>("progress"));
    EXPECT_EQ(LerpColor(0xFF0000, 0x5050FA, 1, bar.width() - 2), ColorAt(bar, 2, 3));
}

TEST_F(DarkLook, ManyNewColoursRestyleTheWindowsOnce)
{
    struct Counter : QLabel {
        int nChanges = 0;
        void changeEvent(QEvent *pEvent) override
        {
            nChanges += pEvent->type() == QEvent::PaletteChange;
            QLabel::changeEvent(pEvent);
        }
    } label;
    label.ensurePolished();
    label.nChanges = 0;
    for (u32 i = 0; i < UICOLORS; i++)
        SetUIColor(i, 0x101010 + i);
    EXPECT_EQ(0, label.nChanges);
    QCoreApplication::processEvents();
    EXPECT_EQ(1, label.nChanges);
}

// A style that draws its lines darker than a black window would fail here.
TEST_F(DarkLook, NoControlVanishesWhateverTheUserChooses)
{
    for (const auto &[dwBack, dwText] : std::vector<std::pair<u32, u32>>{
             {0x000000, TEXT}, {0xFFFFFF, 0x000000}, {0x000000, 0x000000}, {0x808080, 0x808080}}) {
        SetUIColor(UICOLOR_WINDOW_BACKGROUND, dwBack);
        SetUIColor(UICOLOR_WINDOW_TEXT, dwText);
        QCoreApplication::processEvents();
        const std::unique_ptr<QWidget> pGallery(MakeLookGallery());
        Paint(pGallery.get());
        for (const char *pszName : {"button", "edit", "combo", "slider", "checkLeft", "progress", "menu"})
            EXPECT_GE(ColorCount(Paint(pGallery->findChild<QWidget *>(pszName))), 3) << pszName << dwBack;
    }
}

TEST_F(DarkLook, EveryControlPaintsAtEveryScale)
{
    const std::unique_ptr<QWidget> pGallery(MakeLookGallery());
    pGallery->setLayoutDirection(Qt::RightToLeft);
    for (const qreal fScale : {1.0, 1.5, 2.0, 0.1}) {
        QImage image(pGallery->size() * fScale, QImage::Format_RGB32);
        image.setDevicePixelRatio(fScale);
        image.fill(Qt::magenta);
        pGallery->render(&image);
        EXPECT_FALSE(HasColor(image, 0xFF00FF)) << fScale;
    }
    pGallery->resize(1, 1);
    Paint(pGallery.get());
}

TEST_F(DarkLook, AnOutlineIsWholeDevicePixelsAtEveryScaleAndAnEmptyOneIsRefused)
{
    for (const qreal fScale : {1.0, 1.25, 1.5, 2.0}) {
        QImage image(200, 100, QImage::Format_RGB32);
        image.setDevicePixelRatio(fScale);
        image.fill(Qt::black);
        QPainter painter(&image);
        EXPECT_EQ(0u, DrawOutlinedRect(&painter, QRect(10, 10, 0, 5), Qt::red, Qt::green));
        EXPECT_EQ(1, ColorCount(image));
        EXPECT_EQ(1u, DrawOutlinedRect(&painter, QRect(11, 3, 31, 9), Qt::red, Qt::green));
        const int nLine = std::max(static_cast<int>(fScale), 1);
        const QPoint red = ColumnsOf(image, qRound(7 * fScale), ColorFrom(Qt::red));
        const QPoint green = ColumnsOf(image, qRound(7 * fScale), ColorFrom(Qt::green));
        EXPECT_EQ(red + QPoint(nLine, -nLine), green) << fScale;
        EXPECT_EQ(qRound(11 * fScale), red.x());
        EXPECT_EQ(3, ColorCount(image)) << "nothing is blended";
    }
}

TEST_F(DarkLook, ListsAndTreesTakeTheirColoursAndADroppedListItsDialogs)
{
    QTreeWidget tree;
    QListWidget list;
    QTreeWidget columns;
    QComboBox combo;
    ApplyListColors(&columns);
    SetUIColor(UICOLOR_TREE_BACKGROUND, 0x300000);
    SetUIColor(UICOLOR_LIST_BACKGROUND, 0x003000);
    for (QWidget *pWidget : std::initializer_list<QWidget *>{&tree, &list, &columns, &combo, combo.view()})
        pWidget->ensurePolished();
    QCoreApplication::processEvents();
    const auto base = [](const QWidget &widget) { return ColorFrom(widget.palette().color(QPalette::Base)); };
    EXPECT_EQ(0x300000u, base(tree));
    EXPECT_EQ(0x003000u, base(list));
    EXPECT_EQ(0x003000u, base(columns));
    EXPECT_EQ(BACK, base(*combo.view()));
    EXPECT_EQ(1, tree.property("CtrlCustomized").toInt());

    columns.addTopLevelItem(new QTreeWidgetItem({"Gust"}));
    SetUIColor(UICOLOR_LIST_TEXT_BACKGROUND, 0x600000);
    EXPECT_TRUE(HasColor(Paint(&columns), 0x600000)) << "behind the text alone";
    EXPECT_TRUE(HasColor(Paint(&columns), 0x003000));
}

QString LinksOf(const QTextEdit &edit)
{
    QString links;
    for (QTextBlock block = edit.document()->begin(); block.isValid(); block = block.next())
        for (auto i = block.begin(); !i.atEnd(); ++i)
            if (i.fragment().charFormat().isAnchor())
                links += i.fragment().text() + "=" + i.fragment().charFormat().anchorHref() + ";";
    return links;
}

TEST_F(DarkLook, ATextFieldFindsLinksAndHasTabStopsOfSixteenDialogUnits)
{
    QTextBrowser text;
    text.setPlainText("(see www.example.org/a_(b)), HTTPS://example.org?x=1&y=2. or mailto:a@example.org\nno.www "
                      "http:// link");
    ApplyRichEditColors(&text);
    EXPECT_EQ("www.example.org/a_(b=http://www.example.org/a_(b;"
              "HTTPS://example.org?x=1&y=2=HTTPS://example.org?x=1&y=2;mailto:a@example.org=mailto:a@example.org;",
              LinksOf(text).toStdString());
    EXPECT_NEAR(4 * QFontMetricsF(text.font()).horizontalAdvance("x"), text.tabStopDistance(), 4);
    text.setHtml("<a href='file:///x'>here</a>");
    ApplyRichEditColors(&text);
    EXPECT_EQ("here=file:///x;", LinksOf(text).toStdString()) << "a link of the text's own stays";
}

TEST_F(DarkLook, ABarIsStretchedInWholeColumnsAndItsTextIsWhite)
{
    QImage image(40, 8, QImage::Format_RGB32);
    image.setDevicePixelRatio(2);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    DrawMeterBar(&painter, 1, 20, 2, 1, nullptr, 0x00FF00, 0x00FF00);
    for (int x = 0; x < 40; x++)
        EXPECT_EQ(x / 2 % 4 && x / 2 < 19 ? 0x00FF00u : 0u, ColorAt(image, x, 2)) << x;
    EXPECT_EQ(0xFF00FFu, ColorAt(image, 3, 1));
    EXPECT_EQ(0xFF00FFu, ColorAt(image, 3, 6));
    DrawProgressBar(&painter, QRect(0, 0, -5, 4), 1, 0, 0);

    struct Field : QWidget {
        void paintEvent(QPaintEvent *) override
        {
            ShowProgressBar(this, 0.5f, 0x00FF00, 0x0000FF, "HHHH");
        }
    } field;
    field.resize(200, 30);
    const QImage bar = Paint(&field);
    EXPECT_TRUE(HasColor(bar, 0xFFFFFF));
    EXPECT_EQ(0u, ColorAt(bar, 150, 3));
    const int nText = field.fontMetrics().horizontalAdvance("HHHH");
    EXPECT_NEAR(100 + nText / 2, 200 - FirstInk(bar.mirrored(true, false), 15, 0), 4);
}

// What opens over a window, beside each other.
QPixmap GrabPopups(QWidget *pGallery)
{
    auto *pMenu = pGallery->findChild<QMenu *>("menu");
    pMenu->setActiveAction(pMenu->actions().at(1));
    QMessageBox box(QMessageBox::Question, "Vorticade", "The preset has changes. Save them?",
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    auto *pCombo = pGallery->findChild<QComboBox *>("combo");
    pCombo->showPopup();
    QPixmap all(pGallery->size() * pGallery->devicePixelRatio());
    all.setDevicePixelRatio(pGallery->devicePixelRatio());
    all.fill(Qt::darkCyan);
    QPainter painter(&all);
    int x = 10;
    for (QWidget *pPopup : {static_cast<QWidget *>(pMenu), pCombo->view()->window(), static_cast<QWidget *>(&box)}) {
        pPopup->show();
        painter.drawPixmap(x, 10, pPopup->grab());
        x += pPopup->width() + 20;
    }
    return all;
}

// "--gallery" shows the gallery, "--gallery FILE.png [NAME]" saves its picture, with the focus on the
// object of that name, and one of what opens over it.
int ShowGallery(const QString &file, const QString &focus)
{
    const std::unique_ptr<QWidget> pGallery(MakeLookGallery());
    pGallery->show();
    if (file.isEmpty())
        return QApplication::exec();
    QCoreApplication::processEvents();
    pGallery->findChild<QWidget *>(focus)->setFocus();
    const bool bSaved = pGallery->grab().save(file);
    return bSaved && GrabPopups(pGallery.get()).save(file + ".popups.png") ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const bool bGallery = argc > 1 && std::strcmp(argv[1], "--gallery") == 0;
    if (!bGallery || argc > 2)
        UseNoDisplay("1");
    QApplication app(argc, argv);
    InstallDarkLook(&app);
    if (bGallery)
        return ShowGallery(QString::fromLocal8Bit(argc > 2 ? argv[2] : ""), argc > 3 ? argv[3] : "button");
    return RUN_ALL_TESTS();
}
