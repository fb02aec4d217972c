// ModuleOffers.cpp -- which modules a list accepts
#include "editing/ModuleOffers.h"

#include "state/PresetState.h"

#include <iterator>

namespace {

enum class PlaneBit { None, OfPlane, Rgb };

struct ListNeeds {
    u32 dwClass;
    u32 dwCapability;
    PlaneBit ePlane;
};

constexpr ListNeeds asNeeds[] = {
    {MODULECLASS_COLOR, MODULECAP_COLORINTERPOLATOR, PlaneBit::None},
    {MODULECLASS_COLOR, MODULECAP_COLORGENERATOR, PlaneBit::None},
    {MODULECLASS_COLOR, MODULECAP_COLOREFFECT, PlaneBit::None},
    {MODULECLASS_DRAWING, MODULECAP_FULL, PlaneBit::OfPlane},
    {MODULECLASS_DRAWING, MODULECAP_PAINTER, PlaneBit::OfPlane},
    {MODULECLASS_DRAWING, MODULECAP_EFFECT, PlaneBit::OfPlane},
    {MODULECLASS_DRAWING, MODULECAP_FULL, PlaneBit::Rgb},
    {MODULECLASS_DRAWING, MODULECAP_PAINTER, PlaneBit::Rgb},
    {MODULECLASS_DRAWING, MODULECAP_EFFECT, PlaneBit::Rgb},
};
static_assert(std::size(asNeeds) == MODULEINDEX_MIXER);

u32 CapabilityOf(PlaneBit ePlane, bool bIndexed)
{
    if (ePlane == PlaneBit::None)
        return 0;
    return ePlane == PlaneBit::OfPlane && bIndexed ? MODULECAP_INDEXED : MODULECAP_RGB;
}

} // namespace

bool ListAccepts(const ModuleDescription &md, u32 dwModuleType, bool bIndexed)
{
    if (dwModuleType >= std::size(asNeeds))
        return false;
    const ListNeeds &needs = asNeeds[dwModuleType];
    const u32 dwNeeded = needs.dwCapability | CapabilityOf(needs.ePlane, bIndexed);
    return (md.dwClass & needs.dwClass) && (md.dwCapabilities & dwNeeded) == dwNeeded;
}
