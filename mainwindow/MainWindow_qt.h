// MainWindow_qt.h -- the control room: menu, tool buttons, preset tree, status strip
#pragma once

#include "controls/panels/PanelHost_qt.h"
#include "editing/PresetTree.h"
#include "editing/TreeCommands.h"
#include "engine/PresetNews.h"
#include "mainwindow/MainCommands.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <memory>

class PresetTreeView;
class QDialog;
class QLabel;
class QMenu;
class QMenuBar;
class QToolButton;
class SoundMeter;

// One at most. It follows the current preset by its news from its making on, whether it is shown or not. Its close
// button asks before changes are lost, and then ends the program through pfnExit. [main-thread]
class MainWindow : public QWidget {
  public:
    explicit MainWindow(void (*pfnExit)());
    ~MainWindow() override;

    void SelectRoot();
    // From now on the fields, the meter and the sound button follow the show.
    void StartStatus();

  protected:
    void closeEvent(QCloseEvent *pEvent) override;
    void wheelEvent(QWheelEvent *pEvent) override;

  private:
    static void HearPreset(const PresetNews &news, void *pv);
    QWidget *MakeToolButtons();
    QWidget *MakeStatusStrip();
    QLabel *MakeField();
    void ConnectTree();
    void New();
    void Open();
    void SaveAs();
    void Save(const std::u16string &path);
    void OpenTreeMenu(TreeNode *pNode, const QPoint &place);
    void UpdateStatus();
    void ShowSound(bool bQuiet);

    void (*pfnExit)();
    PresetTree Tree;
    MainActions Actions;
    PresetTreeView *pTreeView;
    std::unique_ptr<PanelHost> pPanels; // goes before the tree
    QLabel *pFps, *pBuffer, *pWindowSize;
    SoundMeter *pMeter;
    QToolButton *pSound;
    QTimer StatusTimer;
    QPointer<QDialog> pChooser; // a file chooser that works on the preset of its opening
    bool bWheelPassedOn = false;
    int nQuietShown = -1; // what the sound button's picture says; -1: nothing yet
};

// Enters it in the table of windows as MAIN_WINDOW; OpenWindow makes it. pfnExit ends the program. [main-thread]
void RegisterMainWindow(void (*pfnExit)());
