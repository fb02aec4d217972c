// ModulePanel_qt.cpp -- the panel of one module
#include "controls/panels/ModulePanel.h"
#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/Panel_qt.h"
#include "platform/Clock.h"
#include "state/GlobalSettings.h"
#include "toolkit/Meters_qt.h"
#include "toolkit/UIColors.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>

#include <iterator>

namespace {

constexpr int METER_HEIGHT = 14;
constexpr int SLIDER_WIDTH = 200;
constexpr int READ_OUT_GAP = 12;

// How far the module is on the way to its next reset.
class ResetMeter : public QWidget {
  public:
    explicit ResetMeter(const Panel *p) : pPanel(p)
    {
        setMinimumHeight(METER_HEIGHT);
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAccessibleName(QStringLiteral("Next reset"));
    }
    void Follow()
    {
        if (Columns() != nPainted)
            update();
    }

  protected:
    void paintEvent(QPaintEvent *) override
    {
        nPainted = Columns();
        ShowProgressBar(this, Progress(), UIColorTable[UICOLOR_METER_LOW].dwColor,
                        UIColorTable[UICOLOR_METER_HIGH].dwColor, QString());
    }

  private:
    f32 Progress() const
    {
        const ModuleSlot *pms = pPanel->Slot();
        return pms ? ResetProgress(pms, GlobalSettings.TimeScale, TickCount()) : 0;
    }
    int Columns() const
    {
        return static_cast<int>(static_cast<f32>(width()) * Progress());
    }

    const Panel *const pPanel;
    int nPainted = -1;
};

struct SliderRow {
    const char16_t *pszTitle, *pszLow, *pszHigh;
    i32 nMin, nMax;
    EditField eField;
    i32 (*pfnValue)(const ModuleSlot *pms);
    std::u16string (*pfnText)(i32 nValue);
};

constexpr SliderRow asSlider[] = {
    {u"Module reset frequency in seconds", u"Often", u"Never", 1, DURATION_NEVER, EditField::Duration,
     [](const ModuleSlot *pms) { return static_cast<i32>(pms->nDuration); },
     [](i32 n) { return DurationText(static_cast<u32>(n)); }},
    {u"Number of calls per frame", u"Fractional", u"Multiple", -CALLS_MOST, CALLS_MOST, EditField::CallsPerFrame,
     [](const ModuleSlot *pms) { return pms->nCallsPerFrame; }, CallsText},
};

class ModulePanel : public Panel {
  public:
    ModulePanel(TreeNode *pNode, QWidget *pOwner) : Panel(pNode, pOwner)
    {
        auto *pLayout = new QVBoxLayout;
        pLayout->addWidget(MakeActiveBox());
        pLayout->addWidget(MakeClearBox());
        pLayout->addWidget(MakeSliderGroup(0));
        pLayout->addWidget(MakeMeterGroup());
        pLayout->addWidget(MakeSliderGroup(1));
        Finish(pLayout);
    }

  protected:
    void Fill() override
    {
        const ModuleSlot *pms = Slot();
        if (!pms)
            return;
        pActive->setChecked(pms->bActive != 0);
        pClear->setChecked(pms->bClearOnReset != 0);
        for (size_t i = 0; i < std::size(asSlider); i++)
            FillSlider(i, asSlider[i].pfnValue(pms));
        pMeter->Follow();
    }
    void Follow() override
    {
        Fill();
    }

  private:
    struct Slider {
        QSlider *pSlider;
        QLabel *pText;
    };

    QWidget *MakeActiveBox()
    {
        pActive = new QCheckBox(QStringLiteral("Included in rendering"));
        connect(pActive, &QCheckBox::clicked, this, [this] { Command(TreeCommand::PauseModule); });
        return pActive;
    }
    QWidget *MakeClearBox()
    {
        pClear = new QCheckBox(QStringLiteral("Clear plane on reset"));
        connect(pClear, &QCheckBox::clicked, this, [this](bool bOn) {
            Write(WriteNumber(Place(), EditField::ClearOnReset, bOn));
            Refresh();
        });
        return pClear;
    }
    QWidget *MakeMeterGroup()
    {
        auto *pGroup = new QGroupBox(QStringLiteral("Next reset"));
        auto *pRow = new QHBoxLayout(pGroup);
        pRow->addWidget(pMeter = new ResetMeter(this));
        return pGroup;
    }
    QWidget *MakeSliderGroup(size_t i)
    {
        const SliderRow &row = asSlider[i];
        auto *pGroup = new QGroupBox(QString::fromUtf16(row.pszTitle));
        auto *pRow = new QHBoxLayout(pGroup);
        pRow->addWidget(new QLabel(QString::fromUtf16(row.pszLow)));
        pRow->addWidget(MakeSlider(i), 1);
        pRow->addWidget(new QLabel(QString::fromUtf16(row.pszHigh)));
        pRow->addSpacing(READ_OUT_GAP);
        pRow->addWidget(asOwnSlider[i].pText = MakeReadOut(row));
        return pGroup;
    }
    QSlider *MakeSlider(size_t i)
    {
        const SliderRow &row = asSlider[i];
        auto *pSlider = asOwnSlider[i].pSlider = new QSlider(Qt::Horizontal);
        pSlider->setRange(row.nMin, row.nMax);
        pSlider->setMinimumWidth(SLIDER_WIDTH);
        pSlider->setAccessibleName(QString::fromUtf16(row.pszTitle));
        connect(pSlider, &QSlider::sliderPressed, this, [this] { BeginFieldDrag(); });
        connect(pSlider, &QSlider::sliderReleased, this, [this] {
            EndFieldDrag();
            Refresh();
        });
        connect(pSlider, &QSlider::valueChanged, this, [this, i](int nValue) { MoveSlider(i, nValue); });
        return pSlider;
    }
    // As wide as its longest text, so that the slider stays where it is while it moves.
    static QLabel *MakeReadOut(const SliderRow &row)
    {
        auto *pText = new QLabel;
        pText->setTextFormat(Qt::PlainText);
        int nWidth = 0;
        for (i32 n = row.nMin; n <= row.nMax; n++)
            nWidth =
                std::max(nWidth, pText->fontMetrics().horizontalAdvance(QString::fromStdU16String(row.pfnText(n))));
        pText->setMinimumWidth(nWidth);
        return pText;
    }

    void MoveSlider(size_t i, int nValue)
    {
        if (IsFilling())
            return;
        const FieldWrite write = WriteNumber(Place(), asSlider[i].eField, nValue);
        if (asOwnSlider[i].pSlider->isSliderDown())
            DragFields({write});
        else
            Write(write);
        Refresh();
    }
    void FillSlider(size_t i, i32 nValue)
    {
        const Slider &slider = asOwnSlider[i];
        if (!slider.pSlider->isSliderDown())
            slider.pSlider->setValue(nValue);
        const QString text = QString::fromStdU16String(asSlider[i].pfnText(nValue));
        if (slider.pText->text() == text)
            return;
        slider.pText->setText(text);
        slider.pSlider->setAccessibleDescription(text);
    }

    QCheckBox *pActive, *pClear;
    ResetMeter *pMeter;
    Slider asOwnSlider[std::size(asSlider)];
};

} // namespace

Panel *MakeModulePanel(TreeNode *pNode, QWidget *pOwner)
{
    return new ModulePanel(pNode, pOwner);
}
