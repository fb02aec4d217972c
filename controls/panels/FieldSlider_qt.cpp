// FieldSlider_qt.cpp -- sliders and scroll bars that write a field of a panel's record
#include "controls/panels/FieldSlider_qt.h"

#include "controls/panels/Panel_qt.h"

#include <QAbstractSlider>
#include <QSignalBlocker>

void WriteWithSlider(Panel *pPanel, QAbstractSlider *pSlider, std::function<FieldWrite(i32 nPosition)> pfnWrite,
                     std::function<void()> pfnWritten)
{
    QObject::connect(pSlider, &QAbstractSlider::sliderPressed, pPanel, [pPanel] { pPanel->BeginFieldDrag(); });
    QObject::connect(pSlider, &QAbstractSlider::sliderReleased, pPanel, [pPanel] { pPanel->EndFieldDrag(); });
    QObject::connect(pSlider, &QAbstractSlider::valueChanged, pPanel, [=](int nPosition) {
        std::vector<FieldWrite> writes;
        writes.push_back(pfnWrite(nPosition));
        const EditResult eResult =
            pSlider->isSliderDown() ? pPanel->DragFields(std::move(writes)) : pPanel->Write(std::move(writes));
        if (eResult == EditResult::Refused)
            pPanel->Refresh(); // it goes back to what the record has
        else if (pfnWritten)
            pfnWritten();
    });
}

void PlaceSlider(QAbstractSlider *pSlider, i32 nPosition)
{
    const QSignalBlocker quiet(pSlider);
    pSlider->setValue(nPosition);
}
