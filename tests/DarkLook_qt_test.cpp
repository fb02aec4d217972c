// DarkLook_qt_test.cpp -- tests DarkStyle_qt.cpp and ControlColors_qt.cpp on the real controls, without a display
#include "toolkit/DarkStyle_qt.h"
#include "toolkit/LookGallery_qt.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QWidget>

#include <cstring>
#include <memory>

namespace {

// "--gallery" shows the gallery, "--gallery FILE.png" saves its picture.
int ShowGallery(const QString &file)
{
    const std::unique_ptr<QWidget> pGallery(MakeLookGallery());
    pGallery->show();
    if (file.isEmpty())
        return QApplication::exec();
    QCoreApplication::processEvents();
    return pGallery->grab().save(file) ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const bool bGallery = argc > 1 && std::strcmp(argv[1], "--gallery") == 0;
    if (!bGallery || argc > 2)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    InstallDarkLook(&app);
    if (bGallery)
        return ShowGallery(argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString());
    return RUN_ALL_TESTS();
}
