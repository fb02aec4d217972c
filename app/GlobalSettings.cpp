// GlobalSettings.cpp -- the one record of settings and run-time handles
#include "app/GlobalSettings.h"

#include "app/SettingsTable.h"

GlobalSettingsRecord GlobalSettings;

void SetDefaultSettings()
{
    GlobalSettings = {};
    DefaultSettings(&GlobalSettings);
    GlobalSettings.nBufferWidth = 1280;
    GlobalSettings.nBufferHeight = 1024;
    GlobalSettings.nMessageSeconds = 5;
    GlobalSettings.dwPlaneWaitMs = 4000;
    GlobalSettings.hwndVisuals.cbSize = sizeof(HostWindow);
}
