// WindowNames_qt_test.cpp -- walks all windows: whatever can take the focus there says its name to a screen reader
#include "controls/ControlManager.h"
#include "controls/panels/ColorWindow_qt.h"
#include "mainwindow/MainWindow_qt.h"
#include "output/RecordingDialog_qt.h"
#include "output/VisualsWindow_qt.h"
#include "tests/WindowFixture.h"
#include "toolkit/PaletteBrowser_qt.h"
#include "toolkit/QuestionBox_qt.h"

#include <QAccessible>
#include <QMessageBox>

#include <map>
#include <memory>

namespace {

// A row for every window of the program; the owner outlives it.
struct WindowRow {
    const char *pszName;
    QWidget *(*pfnMake)(QWidget *pOwner);
};

constexpr WindowRow asWindow[] = {
    {"main window", [](QWidget *) -> QWidget * { return new MainWindow([] {}); }},
    {"visuals window", [](QWidget *) -> QWidget * { return new VisualsWindow([] {}); }},
    {"recording dialog", [](QWidget *pOwner) { return static_cast<QWidget *>(RecordingDialogKind.pfnMake(pOwner)); }},
    {"colour window", [](QWidget *pOwner) { return static_cast<QWidget *>(ColorWindowKind.pfnMake(pOwner)); }},
    {"palette browser", [](QWidget *pOwner) -> QWidget * { return BrowsePalettes(pOwner, u"/", [](const auto &) {}); }},
    {"question",
     [](QWidget *pOwner) -> QWidget * {
         bPresetChanged = 1;
         ConfirmDiscard(pOwner, [] {});
         bPresetChanged = 0;
         return pOwner->findChild<QMessageBox *>();
     }},
    {"error",
     [](QWidget *pOwner) -> QWidget * {
         ShowErrorBox(pOwner, "Error", "Error Saving File");
         return pOwner->findChild<QMessageBox *>();
     }},
};

bool TakesFocus(const QWidget *pWidget)
{
    const bool bToolkitsOwn = pWidget->objectName().startsWith("qt_"); // inside of a control that has a name
    return pWidget->focusPolicy() != Qt::NoFocus && !pWidget->focusProxy() && !bToolkitsOwn;
}

// For each name the controls of one kind that have it.
using Names = std::map<std::pair<QString, QAccessible::Role>, int>;

void CollectNames(const QWidget *pWindow, Names *pNames)
{
    for (QWidget *pWidget : pWindow->findChildren<QWidget *>()) {
        if (!TakesFocus(pWidget))
            continue;
        const QAccessibleInterface *pReader = QAccessible::queryAccessibleInterface(pWidget);
        ASSERT_NE(nullptr, pReader) << pWidget->metaObject()->className();
        (*pNames)[{pReader->text(QAccessible::Name).trimmed(), pReader->role()}]++;
    }
}

using WindowNames = WindowTest;

TEST_F(WindowNames, EveryControlThatTakesTheFocusHasANameThatNoOtherOfItsKindHas)
{
    for (const WindowRow &row : asWindow) {
        SCOPED_TRACE(row.pszName);
        QWidget owner;
        const std::unique_ptr<QWidget> pWindow(row.pfnMake(&owner));
        ASSERT_NE(nullptr, pWindow);
        pWindow->show();
        EXPECT_FALSE(QAccessible::queryAccessibleInterface(pWindow.get())->text(QAccessible::Name).isEmpty());
        Names names;
        CollectNames(pWindow.get(), &names);
        for (const auto &[key, n] : names) {
            EXPECT_FALSE(key.first.isEmpty()) << n << " without a name, of the role " << key.second;
            EXPECT_EQ(1, n) << qPrintable(key.first);
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    return RunWindowTests(argc, argv, "1");
}
