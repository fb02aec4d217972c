// GlobalSettings.cpp -- the one record of settings and run-time handles
#include "app/GlobalSettings.h"

GlobalSettingsRecord GlobalSettings;
