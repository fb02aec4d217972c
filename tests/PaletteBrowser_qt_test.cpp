// PaletteBrowser_qt_test.cpp -- the window "Palette Browser": its strips, its keys, what is chosen and what is dropped
#include "toolkit/PaletteBrowser_qt.h"

#include "platform/Text.h"
#include "tests/TempFolder.h"
#include "tests/WindowFixture.h"
#include "toolkit/ControlColors_qt.h"
#include "toolkit/PaletteBrowser.h"
#include "toolkit/WindowEvents_qt.h"

#include <QCheckBox>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QHeaderView>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QTreeView>

#include <memory>

namespace {

using Paths = std::vector<std::u16string>;

// Two colours in a full palette.
std::string TwoColors(const char *pszFirst, const char *pszSecond)
{
    return std::string("\0i\0B\2\0\0\0", 8) + pszFirst + pszSecond;
}

class PaletteWindow : public WindowTest {
  protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        bInterpolatePalettes = 1;
        szPaletteFolder.clear();
        pOwner = std::make_unique<QWidget>();
        pOwner->show();
        for (const char *pszName : {"a.pal", "b <b>&amp; \tc.pal", "d.col"})
            folder.Write(pszName, TwoColors("\xFF\x01\x01", "\x01\x01\xFF"));
        folder.Write("broken.pal");
        folder.Write("other/e.pal", TwoColors("\x01\xFF\x01", "\x01\xFF\x01"));
    }
    void Browse(const PaletteBrowserParms &parms)
    {
        Take(OpenPaletteBrowser(pOwner.get(), parms, [this](const Paths &paths) {
            nCalls++;
            Chosen = paths;
        }));
    }
    void BrowseMany()
    {
        Take(BrowsePalettes(pOwner.get(), folder.Wide(), [this](const Paths &paths) {
            nCalls++;
            Chosen = paths;
        }));
    }
    void Take(QDialog *p)
    {
        pDialog = p;
        pList = p->findChild<QTreeView *>();
        WaitFor([&] { return QTest::qWaitForWindowActive(pDialog); });
    }
    QPushButton *Button(const char *pszText) const
    {
        for (QPushButton *p : pDialog->findChildren<QPushButton *>())
            if (p->text() == QLatin1String(pszText))
                return p;
        return nullptr;
    }
    int Rows() const
    {
        return pList->model()->rowCount();
    }
    QPoint Place(int iRow, int iColumn = 1) const
    {
        return pList->visualRect(pList->model()->index(iRow, iColumn)).center();
    }
    void Click(int iRow, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::mouseClick(pList->viewport(), Qt::LeftButton, modifiers, Place(iRow));
    }
    bool IsOpen() const
    {
        return pDialog && pDialog->isVisible();
    }
    // Whether the window takes them.
    bool Drop(const QList<QUrl> &urls) const
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter({50, 50}, Qt::MoveAction | Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(pDialog, &enter);
        QDropEvent drop({50, 50}, Qt::MoveAction | Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(pDialog, &drop);
        EXPECT_NE(Qt::MoveAction, enter.isAccepted() ? drop.dropAction() : Qt::IgnoreAction);
        return enter.isAccepted();
    }

    TempFolder folder;
    std::unique_ptr<QWidget> pOwner;
    QPointer<QDialog> pDialog;
    QTreeView *pList = nullptr;
    Paths Chosen;
    int nCalls = 0;
};

TEST_F(PaletteWindow, ItListsTheFolderUnderPlainNamesAndFramesGoOn)
{
    static QObject *pKept;
    const auto keep = [](QObject *p, void *) { pKept = p; };
    KeepFramesListeners.Add(keep);
    BrowseMany();
    KeepFramesListeners.Remove(keep);
    EXPECT_EQ(pDialog, pKept);
    EXPECT_EQ("Palette Browser", pDialog->windowTitle());
    EXPECT_TRUE(pDialog->isModal());
    ASSERT_EQ(4, Rows());
    EXPECT_EQ("b <b>&amp;  c.pal", pList->model()->index(1, 0).data().toString());
    EXPECT_EQ("Name", pList->model()->headerData(0, Qt::Horizontal).toString());
    EXPECT_EQ("Palette", pList->model()->headerData(1, Qt::Horizontal).toString());
    EXPECT_EQ(folder.string(), pDialog->findChild<QStatusBar *>()->currentMessage().toStdString());
    EXPECT_EQ(ViewColors::List, ViewColorsOf(pList));
    EXPECT_EQ(pList, pDialog->focusWidget());
    EXPECT_EQ(Qt::ArrowCursor, pDialog->cursor().shape()) << "all is listed";
}

TEST_F(PaletteWindow, StripsFillTheSecondColumnAndFollowTheCheckBox)
{
    BrowseMany();
    const auto color = [&](int iRow, int nPercent, int y = 0) {
        const QRect cell = pList->visualRect(pList->model()->index(iRow, 1));
        const QPoint place(cell.left() + (cell.width() - 1) * nPercent / 100, cell.center().y() + y);
        return pList->viewport()->grab().toImage().pixelColor(place);
    };
    EXPECT_GT(color(1, 0).red(), 240);
    EXPECT_GT(color(1, 100).blue(), 240);
    EXPECT_NEAR(128, color(1, 50).red(), 10);
    EXPECT_EQ(QColor(Qt::black), color(2, 50)) << "no palette";
    const QRect row = pList->visualRect(pList->model()->index(1, 1));
    int nPainted = 0;
    for (int y = -row.height() / 2; y <= row.height() / 2; y++)
        nPainted += color(1, 0, y).red() > 240;
    EXPECT_EQ(16, nPainted);
    auto *pBox = pDialog->findChild<QCheckBox *>();
    EXPECT_EQ("Interpolate Palettes", pBox->text());
    const QColor quarter = color(1, 25);
    QTest::keyClick(pBox, Qt::Key_Space);
    EXPECT_EQ(0u, bInterpolatePalettes);
    EXPECT_NE(quarter, color(1, 25));
    pDialog->reject();
    BrowseMany();
    EXPECT_FALSE(pDialog->findChild<QCheckBox *>()->isChecked()) << "kept for the run";
}

TEST_F(PaletteWindow, TheListFollowsTheSizeOfTheWindow)
{
    BrowseMany();
    for (const QSize size : {QSize(500, 300), QSize(700, 500)}) {
        pDialog->resize(size);
        QCoreApplication::processEvents();
        EXPECT_EQ(size.width() - 3, pList->width());
        EXPECT_EQ(pDialog->findChild<QStatusBar *>()->y(), pList->geometry().bottom() + 1);
        const PaletteColumns widths = PaletteColumnsOf(pList->viewport()->width());
        EXPECT_EQ(widths.nName, pList->header()->sectionSize(0));
        EXPECT_EQ(widths.nPalette, pList->header()->sectionSize(1));
    }
}

TEST_F(PaletteWindow, ManyRowsAreChosenInListOrderByMouseOrByKeys)
{
    BrowseMany();
    Click(3);
    Click(0, Qt::ControlModifier);
    QTest::mouseClick(Button("&Accept"), Qt::LeftButton);
    EXPECT_EQ((Paths{folder.Wide("a.pal"), folder.Wide("d.col")}), Chosen);
    EXPECT_FALSE(IsOpen());
    BrowseMany();
    QTest::keyClick(pList, Qt::Key_End);
    QTest::keyClick(pList, Qt::Key_Up, Qt::ShiftModifier);
    QTest::keyClick(pList, Qt::Key_Return);
    EXPECT_EQ((Paths{folder.Wide("broken.pal"), folder.Wide("d.col")}), Chosen);
    BrowseMany();
    Click(0);
    QTest::keyClick(pList, Qt::Key_D);
    EXPECT_EQ(3, pList->currentIndex().row()) << "found by its first letter";
    Click(1);
    QTest::mouseDClick(pList->viewport(), Qt::LeftButton, {}, Place(1));
    EXPECT_EQ(1u, Chosen.size());
    EXPECT_EQ(3, nCalls);
}

TEST_F(PaletteWindow, CancellingOrChoosingNothingTellsNobody)
{
    const std::function<void()> aWay[] = {
        [&] { QTest::keyClick(pList, Qt::Key_Escape); },
        [&] { QTest::mouseClick(Button("&Cancel"), Qt::LeftButton); },
        [&] { pDialog->close(); },
        [&] {
            pList->clearSelection();
            QTest::mouseClick(Button("&Accept"), Qt::LeftButton);
        },
    };
    for (const auto &leave : aWay) {
        BrowseMany();
        Click(1);
        leave();
        EXPECT_FALSE(IsOpen());
    }
    EXPECT_EQ(0, nCalls);
}

TEST_F(PaletteWindow, TheRightButtonAndCtrlCDoNothing)
{
    QGuiApplication::clipboard()->setText("mine");
    BrowseMany();
    Click(1);
    QTest::mouseClick(pList->viewport(), Qt::RightButton, {}, Place(0));
    QTest::mouseDClick(pList->viewport(), Qt::RightButton, {}, Place(0));
    QContextMenuEvent menu(QContextMenuEvent::Mouse, Place(0), pList->viewport()->mapToGlobal(Place(0)));
    QCoreApplication::sendEvent(pList->viewport(), &menu);
    EXPECT_TRUE(menu.isAccepted());
    QTest::keyClick(pList, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ("mine", QGuiApplication::clipboard()->text());
    QTest::keyClick(pList, Qt::Key_Return);
    EXPECT_EQ(1u, Chosen.size());
    EXPECT_EQ(folder.Wide("b <b>&amp; \tc.pal"), Chosen.front()) << "the name as it is";
}

TEST_F(PaletteWindow, AnotherFolderTakesThePlaceOfTheList)
{
    BrowseMany();
    Click(1);
    QTest::mouseClick(Button("Folder..."), Qt::LeftButton);
    auto *pChooser = pDialog->findChild<QFileDialog *>();
    ASSERT_NE(nullptr, pChooser);
    EXPECT_EQ("Select Palette Folder", pChooser->windowTitle());
    EXPECT_EQ(folder.string(), pChooser->directory().absolutePath().toStdString());
    pChooser->setDirectory(QString::fromStdString(folder.string() + "/other"));
    static_cast<QDialog *>(pChooser)->accept();
    ASSERT_EQ(1, Rows());
    EXPECT_EQ(folder.Wide("other"), szPaletteFolder);
    EXPECT_EQ(folder.string() + "/other", pDialog->findChild<QStatusBar *>()->currentMessage().toStdString());
    std::filesystem::remove_all(folder / "other");
    pList->viewport()->grab();
    WaitFor([&] { return pList->hasFocus(); });
    QTest::keyClick(pList, Qt::Key_Space);
    QTest::keyClick(pList, Qt::Key_Return);
    EXPECT_EQ(Paths{folder.Wide("other/e.pal")}, Chosen) << "also when the file is gone";
}

TEST_F(PaletteWindow, ASingleChoiceIsOnePathAndFilesCanBeAskedFor)
{
    Browse({folder.Wide("gone"), 0, 1, 1, nullptr});
    EXPECT_EQ(0, Rows());
    EXPECT_EQ(nullptr, Button("Folder..."));
    QTest::mouseClick(Button("Files..."), Qt::LeftButton);
    auto *pChooser = pDialog->findChild<QFileDialog *>();
    ASSERT_NE(nullptr, pChooser);
    EXPECT_EQ(QFileDialog::ExistingFiles, pChooser->fileMode());
    Q_EMIT pChooser->filesSelected(
        {QString::fromStdString(folder.string() + "/a.pal"), QString::fromStdString(folder.string() + "/d.col")});
    pChooser->reject();
    ASSERT_EQ(2, Rows());
    EXPECT_EQ(folder.Wide(), szPaletteFolder);
    Click(0);
    Click(1, Qt::ControlModifier);
    QTest::keyClick(pList, Qt::Key_Return);
    EXPECT_EQ(1u, Chosen.size());
    Browse({folder.Wide(), 0, 0, 0, nullptr});
    EXPECT_TRUE(Button("Folder...")->isHidden());
}

TEST_F(PaletteWindow, DroppedFilesAreListedWhateverTheirNames)
{
    BrowseMany();
    EXPECT_FALSE(Drop({QUrl("https://example.org/x.pal")}));
    EXPECT_EQ(4, Rows());
    EXPECT_TRUE(Drop({QUrl("https://example.org/x.pal"), QUrl::fromLocalFile("/some/where/file.txt"),
                      QUrl::fromLocalFile(QString::fromStdString(folder.string() + "/a.pal"))}));
    ASSERT_EQ(2, Rows());
    EXPECT_EQ("file.txt", pList->model()->index(0, 0).data().toString());
    EXPECT_EQ("/some/where", pDialog->findChild<QStatusBar *>()->currentMessage());
    EXPECT_EQ("2 colors", pList->model()->index(1, 1).data(Qt::AccessibleTextRole).toString());
}

TEST_F(PaletteWindow, TheChoiceMayEndTheOwnerAndTheOwnersEndTellsNobody)
{
    Take(BrowsePalettes(pOwner.get(), folder.Wide(), [this](const Paths &) { pOwner.reset(); }));
    Click(0);
    QTest::keyClick(pDialog, Qt::Key_Return);
    EXPECT_EQ(nullptr, pDialog);
    EXPECT_EQ(nullptr, pOwner);
    pOwner = std::make_unique<QWidget>();
    BrowseMany();
    pOwner.reset();
    EXPECT_EQ(nullptr, pDialog);
    EXPECT_EQ(0, nCalls);
}

} // namespace

int main(int argc, char **argv)
{
    return RunWindowTests(argc, argv, "1");
}
