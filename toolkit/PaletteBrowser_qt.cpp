// PaletteBrowser_qt.cpp -- the window "Palette Browser", in which palettes are chosen by eye
#include "toolkit/PaletteBrowser_qt.h"

#include "platform/Files.h"
#include "platform/MainThread.h"
#include "toolkit/Commands.h"
#include "toolkit/ControlColors_qt.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/FileChooser_qt.h"
#include "toolkit/PaletteBrowser.h"
#include "toolkit/PaletteRows_qt.h"
#include "toolkit/WindowEvents_qt.h"

#include <QCheckBox>
#include <QDialog>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr QSize FIRST_SIZE(900, 560);                      // less on a small screen
constexpr int BESIDE_LIST_LEFT = 2, BESIDE_LIST_RIGHT = 1; // three in all
constexpr int STATUS_PAD = 40;                             // the grip in the corner and the space around the text
constexpr i64 FIRST_STEP_NS = 20000000;                    // usual folders are through by then
constexpr i64 STEP_NS = 2000000;                           // for the others the frames go on in between

QString Text(const std::u16string &s)
{
    return QString::fromStdU16String(OneLine(s));
}

class PaletteBrowser : public QDialog {
  public:
    PaletteBrowser(QWidget *pOwner, const PaletteBrowserParms &parms, PalettesChosen pfnChosen);
    ~PaletteBrowser() override;

  protected:
    void dragEnterEvent(QDragEnterEvent *pEvent) override;
    void dropEvent(QDropEvent *pEvent) override;
    void resizeEvent(QResizeEvent *pEvent) override;

  private:
    QLayout *MakeButtons();
    QLayout *MakeList();
    void SetSelectionButton();
    void ShowFolder();
    void FitFolder();
    template <typename Fn> void ChangeRows(Fn change);
    void ListFolder(const std::u16string &folder);
    void ListFiles(const std::vector<std::u16string> &paths);
    void StepWalk(i64 nNanoseconds);
    void EndWalk();
    void AskFolder();
    void AskFiles();
    void Accept();

    const PaletteBrowserParms Parms;
    PalettesChosen Chosen;
    PaletteList Palettes;
    PaletteRows *const pRows;
    std::unique_ptr<PaletteWalk> pWalk; // null: the folder is listed
    QTimer WalkTimer;
    PaletteListView *pView;
    QPushButton *pSelect;
    QStatusBar *pStatus;
};

PaletteBrowser::PaletteBrowser(QWidget *pOwner, const PaletteBrowserParms &parms, PalettesChosen pfnChosen)
    : QDialog(pOwner), Parms(parms), Chosen(std::move(pfnChosen)), pRows(new PaletteRows(&Palettes, this))
{
    KeepFramesUnder(this);
    setWindowTitle(QStringLiteral("Palette Browser"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptDrops(true);
    pStatus = new QStatusBar;
    auto *pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->setSpacing(0);
    pLayout->addLayout(MakeButtons());
    pLayout->addLayout(MakeList(), 1);
    pLayout->addWidget(pStatus);
    resize(FIRST_SIZE.boundedTo(screen()->availableSize() * 9 / 10));
    connect(&WalkTimer, &QTimer::timeout, this, [this] { StepWalk(STEP_NS); });
    if (FolderExists(Parms.lpszFolder))
        ListFolder(Parms.lpszFolder);
    if (Parms.lpfnInitList)
        Parms.lpfnInitList(pView);
    pView->setFocus();
}

// The list goes before its rows.
PaletteBrowser::~PaletteBrowser()
{
    delete pView;
    delete pRows;
}

QLayout *PaletteBrowser::MakeButtons()
{
    auto *pInterpolate = new QCheckBox(QStringLiteral("Interpolate Palettes"));
    pInterpolate->setChecked(bInterpolatePalettes);
    connect(pInterpolate, &QCheckBox::toggled, this, [this](bool bOn) {
        bInterpolatePalettes = bOn;
        pView->viewport()->update();
    });
    pSelect = new QPushButton(this); // shown before it stands in the layout
    SetSelectionButton();
    auto *pAccept = new QPushButton(QStringLiteral("&Accept"));
    pAccept->setDefault(true);
    connect(pAccept, &QPushButton::clicked, this, [this] { Accept(); });
    auto *pCancel = new QPushButton(QStringLiteral("&Cancel"));
    connect(pCancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *pLayout = new QHBoxLayout;
    const int nMargin = style()->pixelMetric(QStyle::PM_LayoutLeftMargin);
    pLayout->setContentsMargins(nMargin, nMargin, nMargin, nMargin / 2);
    pLayout->setSpacing(style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing));
    pLayout->addWidget(pInterpolate);
    pLayout->addWidget(pSelect);
    pLayout->addStretch(1);
    pLayout->addWidget(pAccept);
    pLayout->addWidget(pCancel);
    return pLayout;
}

void PaletteBrowser::SetSelectionButton()
{
    pSelect->setText(Parms.bSelectFiles ? QStringLiteral("Files...") : QStringLiteral("Folder..."));
    pSelect->setVisible(Parms.bSelectFiles || Parms.bSelectFolder);
    connect(pSelect, &QPushButton::clicked, this, [this] { Parms.bSelectFiles ? AskFiles() : AskFolder(); });
}

QLayout *PaletteBrowser::MakeList()
{
    pView = new PaletteListView(pRows);
    pView->setSelectionMode(Parms.bMultiple ? QAbstractItemView::ExtendedSelection
                                            : QAbstractItemView::SingleSelection);
    connect(pView, &QAbstractItemView::doubleClicked, this, [this] { Accept(); });
    auto *pLayout = new QHBoxLayout;
    pLayout->setContentsMargins(BESIDE_LIST_LEFT, 0, BESIDE_LIST_RIGHT, 0);
    pLayout->addWidget(pView);
    return pLayout;
}

void PaletteBrowser::ShowFolder()
{
    const QString folder = Text(szPaletteFolder);
    AddToolTip(pStatus, folder);
    pStatus->setAccessibleName(folder);
    FitFolder();
    pView->setFocus(); // next comes a choice
}

// The end of a long path says more than its middle.
void PaletteBrowser::FitFolder()
{
    const int nWidth = pStatus->width() - STATUS_PAD;
    pStatus->showMessage(pStatus->fontMetrics().elidedText(Text(szPaletteFolder), Qt::ElideMiddle, nWidth));
}

// Keys start at the first row.
template <typename Fn> void PaletteBrowser::ChangeRows(Fn change)
{
    pRows->Change(change);
    pView->selectionModel()->setCurrentIndex(pRows->index(0, PALETTE_COLUMN_NAME), QItemSelectionModel::NoUpdate);
}

void PaletteBrowser::ListFolder(const std::u16string &folder)
{
    szPaletteFolder = folder;
    ChangeRows([this] { EmptyPaletteList(&Palettes); });
    ShowFolder();
    setCursor(Qt::WaitCursor);
    pWalk = std::make_unique<PaletteWalk>(&Palettes);
    StepWalk(FIRST_STEP_NS);
}

void PaletteBrowser::StepWalk(i64 nNanoseconds)
{
    if (pWalk->Look(nNanoseconds)) {
        WalkTimer.start(0);
        return;
    }
    ChangeRows([this] { pWalk->Finish(); });
    EndWalk();
}

void PaletteBrowser::EndWalk()
{
    WalkTimer.stop();
    pWalk.reset();
    unsetCursor();
}

void PaletteBrowser::ListFiles(const std::vector<std::u16string> &paths)
{
    EndWalk();
    ChangeRows([&] { ListPaletteFiles(&Palettes, paths); });
    ShowFolder();
}

void PaletteBrowser::AskFolder()
{
    AskForFolder(this, u"Select Palette Folder", szPaletteFolder, [this](const std::u16string &path) {
        if (FolderExists(path))
            ListFolder(WithoutTrailingSeparators(path));
    });
}

void PaletteBrowser::AskFiles()
{
    AskForFiles(this, {u"Open", szPaletteFolder, u"", u"All Files\t*.*\t\t", false},
                [this](const std::vector<std::u16string> &paths) { ListFiles(paths); });
}

// The owner may end with the choice, and this with it.
void PaletteBrowser::Accept()
{
    const std::u16string result = PaletteResult(Palettes, pView->SelectedRows(), Parms.bMultiple);
    const PalettesChosen pfnChosen = std::move(Chosen);
    if (result.empty() || !pfnChosen)
        return reject();
    accept();
    pfnChosen(PathsOfPaletteResult(result));
}

std::vector<std::u16string> LocalPaths(const QMimeData *pData)
{
    std::vector<std::u16string> paths;
    for (const QUrl &url : pData->urls())
        if (url.isLocalFile())
            paths.push_back(url.toLocalFile().toStdU16String());
    return paths;
}

// Never taken as a move: the files stay where they are.
void TakeAsCopy(QDropEvent *pEvent)
{
    pEvent->setDropAction(Qt::CopyAction);
    pEvent->accept();
}

void PaletteBrowser::dragEnterEvent(QDragEnterEvent *pEvent)
{
    if (!LocalPaths(pEvent->mimeData()).empty())
        TakeAsCopy(pEvent);
}

void PaletteBrowser::dropEvent(QDropEvent *pEvent)
{
    const std::vector<std::u16string> paths = LocalPaths(pEvent->mimeData());
    if (paths.empty())
        return;
    TakeAsCopy(pEvent);
    ListFiles(paths);
}

void PaletteBrowser::resizeEvent(QResizeEvent *)
{
    FitFolder();
}

} // namespace

QDialog *OpenPaletteBrowser(QWidget *pOwner, const PaletteBrowserParms &parms, PalettesChosen pfnChosen)
{
    ASSERT_MAIN_THREAD();
    auto *pBrowser = new PaletteBrowser(pOwner, parms, std::move(pfnChosen));
    pBrowser->open();
    return pBrowser;
}

QDialog *BrowsePalettes(QWidget *pOwner, std::u16string_view folder, PalettesChosen pfnChosen)
{
    return OpenPaletteBrowser(pOwner, {PaletteStartFolder(folder), 1, 0, 1, ApplyListColors}, std::move(pfnChosen));
}
