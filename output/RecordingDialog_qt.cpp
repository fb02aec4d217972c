// RecordingDialog_qt.cpp -- the dialog "Recording Settings"
#include "output/RecordingDialog_qt.h"

#include "output/FrameRecorder.h"
#include "output/RecordingSettings.h"
#include "platform/Files.h"
#include "state/GlobalSettings.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/DialogScaling_qt.h"
#include "toolkit/WindowEvents_qt.h"
#include "toolkit/WindowLayouts_qt.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

constexpr int TEXT_CHARS_MAX = 259;
constexpr int LINE_STEP_MS = 5, PAGE_STEP_MS = 50;
constexpr int WIDEST_TEXT = 560;

constexpr char16_t ABOUT_RECORDER[] =
    u"Vorticade Frame Recorder captures each animation frame to a numbered file in a specified image format. Unlike "
    u"live-capture recording, it can be done at higher resolutions and is not limited by the output window's "
    u"dimensions or real-time constraints.  You'll need a tool like XVid to convert the frame files into a video file.";

QString Text(const char16_t *psz)
{
    return QString::fromUtf16(psz);
}

class RecordingDialog : public QDialog {
  public:
    explicit RecordingDialog(QWidget *pParent);

  private:
    QWidget *MakeRecorderGroup();
    QGroupBox *MakeSizeGroup();
    QGroupBox *MakeRestGroup();
    QWidget *MakeFolderRow();
    QHBoxLayout *MakeDemoRow();
    RecordingChoice Choice() const;
    void Fill(const RecordingChoice &choice);
    void ShowCheck();
    void ShowTrouble();
    void CreateFolder();
    void Store();

    QRadioButton *pKeystrokes, *pFrames;
    QLineEdit *pFolder, *pFormat, *pDemo;
    QLabel *pTrouble;
    QPushButton *pCreate;
    QSpinBox *pWidth, *pHeight, *pDelay;
    QSlider *pRest;
};

// The combinations are edited elsewhere; here they only stand in their place.
QGroupBox *MakeKeystrokeGroup()
{
    auto *pGroup = new QGroupBox(QStringLiteral("3rd Party start/stop recording keystroke combinationss..."));
    auto *pLayout = new QFormLayout(pGroup);
    pLayout->addRow(QStringLiteral("Start"), new QLineEdit);
    pLayout->addRow(QStringLiteral("Stop"), new QLineEdit);
    pGroup->setEnabled(false);
    return pGroup;
}

RecordingDialog::RecordingDialog(QWidget *pParent) : QDialog(pParent)
{
    KeepFramesUnder(this);
    setWindowTitle(QStringLiteral("Recording Settings"));
    setAttribute(Qt::WA_DeleteOnClose);
    pKeystrokes = new QRadioButton(QStringLiteral("Record animations using 3rd Party Screen Recorder"));
    pFrames = new QRadioButton(QStringLiteral("Record animations using Vorticade Frame Recorder"));
    auto *pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    pButtons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("OK"));
    pButtons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Cancel"));
    auto *pLayout = new QVBoxLayout(this);
    for (QWidget *pWidget : {static_cast<QWidget *>(pKeystrokes), static_cast<QWidget *>(MakeKeystrokeGroup()),
                             static_cast<QWidget *>(pFrames), MakeRecorderGroup(), static_cast<QWidget *>(pButtons)})
        pLayout->addWidget(pWidget);
    connect(pButtons, &QDialogButtonBox::accepted, this, [this] { Store(); });
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Fill(CurrentRecordingChoice());
    ShowCheck();
    EnableDialogScaling(this);
}

QWidget *RecordingDialog::MakeRecorderGroup()
{
    auto *pGroup = new QGroupBox(QStringLiteral("Vorticade Frame Recorder configuration..."));
    auto *pAbout = new QLabel(Text(ABOUT_RECORDER));
    pAbout->setWordWrap(true);
    pAbout->setMinimumWidth(WIDEST_TEXT);
    pFormat = MakeTextField(TEXT_CHARS_MAX, QStringLiteral("Filename/number format"));
    pFormat->setObjectName(QStringLiteral("format"));
    auto *pForm = new QFormLayout;
    pForm->addRow(QStringLiteral("Frame folder"), MakeFolderRow());
    pForm->addRow(QStringLiteral("Filename/number format"), pFormat);
    pForm->addRow(QString(), new QLabel(QStringLiteral("eg. MyFilename-%05.png")));
    auto *pLayout = new QVBoxLayout(pGroup);
    pLayout->addWidget(pAbout);
    pLayout->addLayout(pForm);
    pLayout->addLayout(MakeDemoRow());
    pLayout->addWidget(MakeSizeGroup());
    pLayout->addWidget(MakeRestGroup());
    connect(pFolder, &QLineEdit::textChanged, this, [this] { ShowTrouble(); });
    connect(pFormat, &QLineEdit::textChanged, this, [this] { ShowTrouble(); });
    return pGroup;
}

QWidget *RecordingDialog::MakeFolderRow()
{
    const PathField field = MakeFolderField(QStringLiteral("Frame folder"),
                                            QStringLiteral("Select the folder where you want to save the frame files."),
                                            TEXT_CHARS_MAX, [this] { ShowCheck(); });
    pFolder = field.pLine;
    pFolder->setObjectName(QStringLiteral("folder"));
    return field.pRow;
}

QHBoxLayout *RecordingDialog::MakeDemoRow()
{
    pDemo = new QLineEdit;
    pDemo->setReadOnly(true);
    pDemo->setObjectName(QStringLiteral("demo"));
    pDemo->setAccessibleName(QStringLiteral("Sample path"));
    auto *pButton = new QPushButton(QStringLiteral("Demo"));
    connect(pButton, &QPushButton::clicked, this, [this] { ShowCheck(); });
    pTrouble = new QLabel;
    pTrouble->setObjectName(QStringLiteral("trouble"));
    pCreate = new QPushButton(QStringLiteral("Create folder"));
    KeepPlaceWhenHidden(pCreate);
    connect(pCreate, &QPushButton::clicked, this, [this] { CreateFolder(); });
    auto *pTroubleRow = new QHBoxLayout;
    pTroubleRow->addWidget(pTrouble, 1);
    pTroubleRow->addWidget(pCreate);
    auto *pColumn = new QVBoxLayout;
    pColumn->addWidget(pDemo);
    pColumn->addLayout(pTroubleRow);
    auto *pRow = new QHBoxLayout;
    pRow->addLayout(pColumn, 1);
    pRow->addWidget(pButton, 0, Qt::AlignTop);
    return pRow;
}

QGroupBox *RecordingDialog::MakeSizeGroup()
{
    auto *pGroup = new QGroupBox(QStringLiteral("Recording Resolution"));
    auto *pLayout = new QHBoxLayout(pGroup);
    pWidth = MakeNumberField(RECORD_SIDE_MIN, RECORD_SIDE_MAX, QStringLiteral("H"));
    pHeight = MakeNumberField(RECORD_SIDE_MIN, RECORD_SIDE_MAX, QStringLiteral("V"));
    for (const RecordingSize &size : RecordingSizes()) {
        auto *pButton = new QPushButton(Text(size.pszName));
        connect(pButton, &QPushButton::clicked, this, [this, size] {
            pWidth->setValue(size.nWidth);
            pHeight->setValue(size.nHeight);
        });
        pLayout->addWidget(pButton);
    }
    pLayout->addWidget(new QLabel(QStringLiteral("H")));
    pLayout->addWidget(pWidth);
    pLayout->addWidget(new QLabel(QStringLiteral("V")));
    pLayout->addWidget(pHeight);
    auto *pRotate = new QPushButton(QStringLiteral("Rotate"));
    connect(pRotate, &QPushButton::clicked, this, [this] {
        const int nWidth = pWidth->value();
        pWidth->setValue(pHeight->value());
        pHeight->setValue(nWidth);
    });
    pLayout->addWidget(pRotate);
    return pGroup;
}

QGroupBox *RecordingDialog::MakeRestGroup()
{
    auto *pGroup = new QGroupBox(QStringLiteral("GPU Rest Between frames to prevent overheating"));
    auto *pLayout = new QHBoxLayout(pGroup);
    pRest = new QSlider(Qt::Horizontal);
    pDelay = new QSpinBox;
    InitTrackBar(pRest, pDelay, {0, RECORD_DELAY_MAX_MS, LINE_STEP_MS, PAGE_STEP_MS}, GlobalSettings.FrameRecordDelay,
                 QStringLiteral("ms"));
    pLayout->addWidget(pRest);
    pLayout->addWidget(pDelay);
    pLayout->addWidget(new QLabel(QStringLiteral("ms")));
    connect(pRest, &QSlider::valueChanged, this, [](int n) { StoreRecordingDelay(n); });
    return pGroup;
}

RecordingChoice RecordingDialog::Choice() const
{
    return {pFrames->isChecked() ? RECORD_METHOD_FRAMES : RECORD_METHOD_KEYSTROKES,
            pWidth->value(),
            pHeight->value(),
            pDelay->value(),
            pFolder->text().toStdU16String(),
            pFormat->text().toStdU16String()};
}

void RecordingDialog::Fill(const RecordingChoice &choice)
{
    (choice.nMethod == RECORD_METHOD_FRAMES ? pFrames : pKeystrokes)->setChecked(true);
    pWidth->setValue(choice.nWidth);
    pHeight->setValue(choice.nHeight);
    pRest->setValue(choice.nDelayMs);
    pDelay->setValue(choice.nDelayMs);
    pFolder->setText(QString::fromStdU16String(choice.folder));
    pFormat->setText(QString::fromStdU16String(choice.format));
}

void RecordingDialog::ShowCheck()
{
    const RecordingChoice choice = Choice();
    std::u16string text;
    CheckFramePath(choice.folder, choice.format, &text);
    pDemo->setText(QString::fromStdU16String(text));
    ShowTrouble();
}

void RecordingDialog::ShowTrouble()
{
    const RecordingChoice choice = Choice();
    pTrouble->setText(QString::fromStdU16String(DescribeRecordingTrouble(choice)));
    pCreate->setVisible(!choice.folder.empty() && !FolderExists(choice.folder));
}

void RecordingDialog::CreateFolder()
{
    if (CreateFrameFolder(Choice().folder))
        ShowCheck();
    else
        pTrouble->setText(QStringLiteral("The folder cannot be created there."));
}

void RecordingDialog::Store()
{
    StoreRecordingChoice(Choice());
    accept();
}

void *MakeRecordingDialog(void *pvOwner)
{
    auto *pDialog = new RecordingDialog(static_cast<QWidget *>(pvOwner));
    FollowWindow(RecordingDialogKind.pszName, pDialog);
    return static_cast<QWidget *>(pDialog);
}

} // namespace

const WindowKind RecordingDialogKind = {RECORDING_DIALOG, WindowUse::Dialog, MakeRecordingDialog, &WidgetFunctions};
