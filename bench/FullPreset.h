// FullPreset.h -- the records of a preset as full as a preset can be, for the benchmarks of its tree
#pragma once

#include "controls/ControlManager.h"
#include "platform/Text.h"
#include "state/PresetState.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace bench {

constexpr i32 MODULES = 8; // in each list
constexpr u32 CONTROLS = 20;

// Records as a loaded preset has them, each with memory of its own, but without module libraries and bitmaps.
struct FullPreset {
    FullPreset()
    {
        CopyText(md.szName, u"Some Module");
        for (PlaneState *&pps : Preset.psPlane) {
            pps = &asPlane[Preset.nPlanes++];
            pps->lppsi = &Preset;
            for (u32 dwList = 0; dwList < MODULEINDEX_MIXER; dwList++)
                while (pps->anModules[dwList] < MODULES)
                    pps->apModule[dwList][pps->anModules[dwList]++] = MakeSlot(pps);
        }
    }
    ~FullPreset()
    {
        for (const auto &pms : apSlot)
            std::for_each_n(pms->apControl, pms->nControls, FreeControl);
    }

    ModuleSlot *MakeSlot(PlaneState *pps)
    {
        apSlot.push_back(std::make_unique<ModuleSlot>());
        ModuleSlot *pms = apSlot.back().get();
        pms->pmd = &md;
        pms->ppsOwner = pps;
        while (pms->nControls < static_cast<i32>(CONTROLS)) {
            ControlRecord *pctl = pms->apControl[pms->nControls] = NewControl();
            NameControl(pctl, static_cast<u32>(pms->nControls++));
            pctl->Base.dwType = CONTROLTYPE_FLOAT;
            pctl->Float = {0, 1, 0, 1, 0, 1, 0.5f, 0.5f, 0};
        }
        return pms;
    }
    // Half of them in two groups, as modules have them.
    static void NameControl(ControlRecord *pctl, u32 iControl)
    {
        std::u16string name = iControl % 2 ? std::u16string() : iControl % 4 ? u"Colours" : u"Movement";
        name += name.empty() ? u"" : std::u16string(1, u'\0');
        name += u"Control number " + FromUtf8(std::to_string(iControl));
        std::copy(name.begin(), name.end(), pctl->Base.szName);
    }

    ModuleDescription md = {};
    PresetState Preset = {};
    PlaneState asPlane[PLANES_MAX] = {};
    std::vector<std::unique_ptr<ModuleSlot>> apSlot;
};

} // namespace bench
