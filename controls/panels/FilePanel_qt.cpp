// FilePanel_qt.cpp -- the panel of a file select: its list, edited by hand and filled by a chooser
#include "controls/panels/FileListBox_qt.h"
#include "controls/panels/FilePanel.h"
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/Panel_qt.h"
#include "platform/Notices.h"
#include "toolkit/FileChooser_qt.h"
#include "toolkit/PaletteBrowser_qt.h"
#include "toolkit/ShellOpen_qt.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr QSize LIST_SIZE(420, 260);

using Paths = std::vector<std::u16string>;

class FilePanel : public Panel {
  public:
    FilePanel(TreeNode *pNode, QWidget *pOwner);
    ~FilePanel() override;

  protected:
    void Fill() override;
    void TakeOver() override;

  private:
    QPushButton *AddButton(QLayout *pLayout, const char16_t *pszText, void (FilePanel::*pfn)());
    QLayout *MakeButtons();
    void EditOrCreate();
    void AskFiles();
    void AddFiles(const Paths &paths);
    void ClearList();

    QCheckBox *pShuffle;
    QPushButton *pEdit;
    FileListBox *pList;
};

FilePanel::FilePanel(TreeNode *pNode, QWidget *pOwner) : Panel(pNode, pOwner)
{
    pList = new FileListBox;
    pList->setAccessibleName(QStringLiteral("File List"));
    pList->setMinimumSize(LIST_SIZE);
    pList->pfnLeft = [this] { TakeOver(); };
    auto *pLayout = new QVBoxLayout;
    pLayout->addWidget(MakeDescriptionBox());
    pLayout->addLayout(MakeButtons());
    pLayout->addWidget(pList, 1);
    Finish(pLayout);
}

// The box loses the focus once more when it goes, after all of this has gone.
FilePanel::~FilePanel()
{
    pList->pfnLeft = nullptr;
}

QPushButton *FilePanel::AddButton(QLayout *pLayout, const char16_t *pszText, void (FilePanel::*pfn)())
{
    auto *pButton = new QPushButton(QString::fromUtf16(pszText));
    connect(pButton, &QPushButton::clicked, this, [this, pfn] { (this->*pfn)(); });
    pLayout->addWidget(pButton);
    return pButton;
}

QLayout *FilePanel::MakeButtons()
{
    auto *pLayout = new QHBoxLayout;
    pShuffle = new QCheckBox(QStringLiteral("Shuffle"));
    connect(pShuffle, &QCheckBox::clicked, this,
            [this](bool bOn) { Write(WriteNumber(Place(), EditField::Shuffle, bOn)); });
    pLayout->addWidget(pShuffle);
    pLayout->addStretch(1);
    pEdit = AddButton(pLayout, u"Edit/Create...", &FilePanel::EditOrCreate);
    AddButton(pLayout, u"Add Files...", &FilePanel::AskFiles);
    AddButton(pLayout, u"Clear List", &FilePanel::ClearList);
    return pLayout;
}

void FilePanel::Fill()
{
    const ControlRecord *pctl = Control();
    if (!pctl)
        return;
    pShuffle->setChecked(pctl->FileSelect.bShuffle != 0);
    pEdit->setEnabled(!EditorOf(pctl).empty());
    const std::u16string_view list = pctl->FileSelect.pszFileList ? pctl->FileSelect.pszFileList : u"";
    if (!pList->IsBeingTyped() && pList->List() != ListWithBreaks(list))
        pList->SetList(list);
}

// Changed or not.
void FilePanel::TakeOver()
{
    if (Write(WriteText(Place(), EditField::FileList, pList->List())) != EditResult::Refused)
        pList->NoteTaken();
}

void FilePanel::EditOrCreate()
{
    for (const std::u16string &path : EditorPaths(EditorOf(Control())))
        if (OpenWithShell(path))
            return;
}

void FilePanel::AskFiles()
{
    if (!Control())
        return;
    const std::u16string type = FileTypeOf(Control());
    const ListChooserRow &row = ChooserOf(type);
    const auto add = [this](const Paths &paths) { AddFiles(paths); };
    const std::u16string sFolder = FolderPath(row.eFolder);
    if (row.eChooser == ListChooser::Palettes)
        BrowsePalettes(this, sFolder, add);
    else if (row.eChooser == ListChooser::Image)
        AskForFiles(this, {u"Open Image", sFolder, {}, pszImageFilter, false, IMAGE_FILTER_FIRST}, add);
    else
        AskForFiles(this, {u"Open", sFolder, {}, ListFilter(type), false}, add);
}

void FilePanel::AddFiles(const Paths &paths)
{
    const ControlRecord *pctl = Control();
    if (!pctl)
        return;
    AddedFiles added = AddFilesToList(pList->List(), paths);
    const std::string left = LeftOutText(added);
    if (!left.empty())
        AddNotice(left);
    if (!added.nAdded)
        return;
    if (Write(AddedListWrites(Place(), pctl, added.sList)) != EditResult::Refused)
        pList->SetList(added.sList);
}

void FilePanel::ClearList()
{
    if (Write(WriteText(Place(), EditField::FileList, {})) != EditResult::Refused)
        pList->SetList({});
}

} // namespace

Panel *MakeFilePanel(TreeNode *pNode, QWidget *pOwner)
{
    return new FilePanel(pNode, pOwner);
}
