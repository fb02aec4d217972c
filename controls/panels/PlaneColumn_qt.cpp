// PlaneColumn_qt.cpp -- one plane in the panels of planes: its preview, its box, its buttons
#include "controls/panels/PlaneColumn_qt.h"

#include "controls/panels/PictureButtons_qt.h"
#include "controls/panels/PlanePreview_qt.h"

#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

QString TextOf(const char16_t *psz)
{
    return QString::fromUtf16(psz);
}

} // namespace

PlaneColumn::PlaneColumn(std::function<const PlaneState *()> pfnPlane, std::span<const PlaneButton> buttons,
                         ClickFn pfnClick)
    : pPreview(new PlanePreview(std::move(pfnPlane))), pBox(new QLineEdit)
{
    pBox->setReadOnly(true);
    auto *pRow = new QHBoxLayout;
    pRow->addStretch();
    for (const PlaneButton eButton : buttons) {
        const PlaneButtonLook look = LookOfPlaneButton(eButton, false);
        QToolButton *pButton = MakePictureButton(look.pszIcon, TextOf(look.pszName));
        connect(pButton, &QToolButton::clicked, this, [pfnClick, eButton] { pfnClick(eButton); });
        pRow->addWidget(pButton);
        Buttons.push_back({eButton, pButton});
    }
    pRow->addStretch();
    auto *pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(pPreview, 1);
    pLayout->addWidget(pBox);
    pLayout->addLayout(pRow);
}

void PlaneColumn::ShowState(const PresetState *lppsi, i32 iPlane)
{
    const QString text = QString::fromStdU16String(PlaneBoxText(lppsi, iPlane));
    if (pBox->text() != text) {
        pBox->setText(text);
        pBox->setAccessibleName(QStringLiteral("Plane %1").arg(iPlane + 1));
        pPreview->setAccessibleName(QStringLiteral("Picture of plane %1").arg(iPlane + 1));
    }
    const bool bIsThere = PlaneButtonActs(lppsi, iPlane, PlaneButton::Pause);
    const bool bPaused = bIsThere && lppsi->psPlane[iPlane]->bPaused;
    for (const Button &button : Buttons) {
        const PlaneButtonLook look = LookOfPlaneButton(button.eButton, bPaused);
        SetPictureButton(button.pButton, look.pszIcon, TextOf(look.pszName));
        button.pButton->setEnabled(PlaneButtonActs(lppsi, iPlane, button.eButton));
    }
}

void PlaneColumn::FollowPicture()
{
    pPreview->Follow();
}
