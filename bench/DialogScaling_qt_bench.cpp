// DialogScaling_qt_bench.cpp -- a scaling pass over a panel with all that panels have, and a design that is taken again
#include "bench/BenchReport.h"

#include "toolkit/DarkStyle_qt.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/DialogScaling_qt.h"
#include "toolkit/RangeSlider_qt.h"
#include "toolkit/UIColors.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSlider>
#include <QSpinBox>

#include <string>

namespace {

constexpr unsigned ROUNDS = 41;
constexpr double PASS_GOAL = 4000; // microseconds: a quarter of a frame

// Settings at the left, a drawing area with two bars at the right.
QGroupBox *MakeSubPanel(const char *pszTitle, int nRows)
{
    auto *pPanel = new QGroupBox(QString::fromUtf8(pszTitle));
    auto *pGrid = new QGridLayout(pPanel);
    for (int i = 0; i < nRows; i++) {
        auto *pSlider = new QSlider(Qt::Horizontal);
        auto *pField = new QSpinBox;
        InitTrackBar(pSlider, pField, {0, 16000}, 400, QStringLiteral("Period"));
        pGrid->addWidget(new QLabel(QStringLiteral("Reset Frequency")), i, 0);
        pGrid->addWidget(pSlider, i, 1);
        pGrid->addWidget(pField, i, 2);
        pGrid->addWidget(new QLabel(QStringLiteral("ms")), i, 3);
    }
    pGrid->addWidget(new QCheckBox(QStringLiteral("Randomize Wave Phase")), nRows, 0, 1, 4);
    pGrid->addWidget(new QSlider(Qt::Vertical), 0, 5, nRows, 1);
    pGrid->addWidget(new QSlider(Qt::Horizontal), nRows, 4);
    KeepPlaceWhenHidden(pPanel);
    return pPanel;
}

QComboBox *MakeCombo()
{
    auto *pCombo = new QComboBox;
    for (const char *psz : {"Fixed Value", "Randomly Initialized", "Periodically Randomized", "Wave", "Sound"})
        AddComboItem(pCombo, QString::fromUtf8(psz), 0, 1);
    return pCombo;
}

void FillPanel(QDialog *pPanel)
{
    SliderInfo info = {};
    info.fMaximum = 100;
    info.bRangeMode = 1;
    auto *pGrid = new QGridLayout(pPanel);
    pGrid->addWidget(new QPlainTextEdit(QStringLiteral("What the control does")), 0, 0, 1, 4);
    int iRow = 1;
    for (const char *psz : {"Source:", "Select:", "Wave Type:"}) {
        pGrid->addWidget(new QLabel(QString::fromUtf8(psz)), iRow, 0);
        pGrid->addWidget(MakeCombo(), iRow, 1);
        pGrid->addWidget(new QCheckBox(QStringLiteral("Only Even")), iRow, 2);
        pGrid->addWidget(new QCheckBox(QStringLiteral("Min/Max")), iRow++, 3);
    }
    for (int i = 0; i < 4; i++)
        pGrid->addWidget(new QLineEdit(QStringLiteral("0.00000")), iRow, i);
    pGrid->addWidget(new RangeSelectSlider(info), iRow + 1, 0, 1, 4);
    for (const char *psz : {"Waveform Settings", "Sound Settings", "Random Value Settings"})
        pGrid->addWidget(MakeSubPanel(psz, 3), iRow + 2, 0, 1, 4);
}

u32 Count(QWidget *, void *pv)
{
    ++*static_cast<int *>(pv);
    return 1;
}

// A size that the window has not had just before, as in a drag.
QSize NextSize(const QSize &design)
{
    static int n = 0;
    n = (n + 7) % 100;
    return design + QSize(design.width() * n / 100, design.height() * (n * 3 % 100) / 100);
}

void Measure(QDialog *pPanel)
{
    const QSize design = pPanel->size();
    int nControls = 0;
    ForEachDialogChild(pPanel, Count, &nControls, DIALOG_DEPTH);
    const auto serve = [] { QCoreApplication::processEvents(); };
    const auto [afPass, afFrame, afAgain] = TimeInterleavedAfter(
        serve, ROUNDS, 1, [&] { pPanel->resize(NextSize(design)); },
        [&] {
            pPanel->resize(NextSize(design));
            serve();
        },
        [&] { TakeDesignAgain(pPanel); });
    const std::string name = "DialogScaling/pass over " + std::to_string(nControls) + " controls";
    ReportFigure(name.c_str(), Median(afPass), PASS_GOAL, "us", BenchGoal::AT_MOST);
    ReportFigure("DialogScaling/pass and painting", Median(afFrame), 0, "us", BenchGoal::NONE);
    ReportFigure("DialogScaling/design taken again", Median(afAgain), 0, "us", BenchGoal::NONE);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    SetDefaultUIColors();
    InstallDarkLook(&app);
    QDialog panel;
    FillPanel(&panel);
    EnableDialogScaling(&panel);
    panel.show();
    QCoreApplication::processEvents();
    Measure(&panel);
    return 0;
}
