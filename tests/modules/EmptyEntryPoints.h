// EmptyEntryPoints.h -- the entry points that most test modules leave empty
#pragma once

#include "module.h"

void ModulePreInitialize(void *, PlaneInfo *)
{
}

void ModuleInitialize(void *, PlaneInfo *)
{
}

void ModuleResolveIndexedPlane(void *, PlaneInfo *, HostBitmap *)
{
}

void ModuleDestroyControlStructure(void *)
{
}
