// GlobalSettings.cpp -- the one record of settings and run-time handles
#include "state/GlobalSettings.h"

GlobalSettingsRecord GlobalSettings;
