// TilePanel_qt.cpp -- the panel of a tile control: patterns for all tiles at once, and the tiles
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/Panel_qt.h"
#include "controls/panels/TileGridView_qt.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

class TilePanel : public Panel {
  public:
    TilePanel(TreeNode *pNode, QWidget *pOwner);
    ~TilePanel() override;

  protected:
    void Fill() override;

  private:
    QLayout *MakeButtons();
    TileGrid Tiles() const
    {
        return TilesOf(Control());
    }
    void Take(std::vector<FieldWrite> writes);

    TileGridView *pGrid;
};

TilePanel::TilePanel(TreeNode *pNode, QWidget *pOwner) : Panel(pNode, pOwner)
{
    pGrid = new TileGridView;
    pGrid->pfnTiles = [this] { return Tiles(); };
    pGrid->pfnTurn = [this](TileAt tile) { Take(TurnWrites(Place(), Tiles(), tile)); };
    auto *pLayout = new QHBoxLayout;
    pLayout->addLayout(MakeButtons());
    pLayout->addWidget(pGrid, 1);
    Finish(pLayout);
}

// The grid goes after all of this has gone.
TilePanel::~TilePanel()
{
    pGrid->pfnTiles = nullptr;
    pGrid->pfnTurn = nullptr;
}

QLayout *TilePanel::MakeButtons()
{
    auto *pLayout = new QVBoxLayout;
    for (const TileButton &row : TileButtons()) {
        auto *pButton = new QPushButton(QString::fromUtf16(row.pszText));
        connect(pButton, &QPushButton::clicked, this, [this, &row] { Take(PatternWrites(Place(), Tiles(), row)); });
        pLayout->addWidget(pButton);
    }
    pLayout->addStretch(1);
    return pLayout;
}

void TilePanel::Take(std::vector<FieldWrite> writes)
{
    if (!writes.empty())
        Write(std::move(writes));
    pGrid->update();
}

void TilePanel::Fill()
{
    pGrid->update();
}

} // namespace

Panel *MakeTilePanel(TreeNode *pNode, QWidget *pOwner)
{
    return new TilePanel(pNode, pOwner);
}
