// GlobalSettings.cpp -- the one record of settings and run-time handles
#include "app/GlobalSettings.h"

#include "app/Folders.h"
#include "platform/Text.h"

GlobalSettingsRecord GlobalSettings;

void SetDefaultSettings()
{
    GlobalSettings = {};
    GlobalSettings.PresetBView = 3;
    GlobalSettings.DetailScale = 100;
    GlobalSettings.BufferCap = BUFFER_PIXELS_MAX;
    GlobalSettings.FPSTarget = 60;
    GlobalSettings.ThreadedPlanes = 1;
    GlobalSettings.AutoAdjustBuffer = 1;
    GlobalSettings.VolumeType = VOLUMETYPE_DYNAMIC_SIMULATED;
    GlobalSettings.TimeScale = 1;
    CopyText(GlobalSettings.Preset, u"Tempname.VD");
    CopyText(GlobalSettings.FrameRecordFormat, u"Untitled-%04d.png");
    CopyText(GlobalSettings.FrameRecordFolder, FolderPath(PATH_SCREENSHOTS));
    GlobalSettings.FrameRecordWidth = 640;
    GlobalSettings.FrameRecordHeight = 480;
    GlobalSettings.FrameRecordDelay = 500;
    GlobalSettings.ShowMP = 1;
    GlobalSettings.ShowPrg = 1;
    GlobalSettings.ShowOneRow = 1;
    GlobalSettings.nBufferWidth = 1280;
    GlobalSettings.nBufferHeight = 1024;
    GlobalSettings.nMessageSeconds = 5;
    GlobalSettings.dwPlaneWaitMs = 4000;
    GlobalSettings.hwndVisuals.cbSize = sizeof(HostWindow);
}
