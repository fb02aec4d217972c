// SharedStatus.cpp -- the named block and event through which other programs know of this one
#include "app/SharedStatus.h"

#include "platform/SharedMemory.h"
#include "state/GlobalSettings.h"

#include <cstring>

namespace {

SharedMapping Mapping;

bool BlockIsForeign(const SharedStatusBlock *pssb)
{
    const bool bBeingMade = pssb->cbSize == 0 && pssb->dwVersion == 0; // its maker has not come to writing yet
    const bool bOurs = pssb->cbSize == SHARED_STATUS_BYTES && pssb->dwVersion == SHARED_STATUS_VERSION;
    return Mapping.cbExisting != SHARED_STATUS_BYTES || !(bOurs || bBeingMade);
}

} // namespace

u32 OpenSharedStatus()
{
    if (!OpenSharedMapping(&Mapping, "PSSCDSPSharedFileMappingOF", SHARED_STATUS_BYTES))
        return 0;
    auto *pssb = static_cast<SharedStatusBlock *>(Mapping.pView);
    if (Mapping.bCreated)
        std::memset(reinterpret_cast<u8 *>(pssb) + sizeof(u32), 0, SHARED_STATUS_BYTES - sizeof(u32));
    else if (BlockIsForeign(pssb)) {
        CloseSharedMapping(&Mapping);
        return 0;
    }
    pssb->cbSize = SHARED_STATUS_BYTES;
    pssb->dwVersion = SHARED_STATUS_VERSION;
    pssb->dwMark = SHARED_STATUS_MARK;
    pssb->dwOne = 1;
    CreateNamedEvent(&Mapping, "JHOFNewFrameEvent");
    GlobalSettings.pSharedStatus = pssb;
    return 1;
}

void CloseSharedStatus()
{
    GlobalSettings.pSharedStatus = nullptr;
    CloseSharedMapping(&Mapping);
}
