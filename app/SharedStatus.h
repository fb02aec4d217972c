// SharedStatus.h -- the named block and event through which other programs know of this one
#pragma once

#include "platform/BaseTypes.h"

constexpr u32 SHARED_STATUS_BYTES = 5922;
constexpr u32 SHARED_STATUS_VERSION = 14;
constexpr u32 SHARED_STATUS_MARK = 0x4F07D0;

// The block, little-endian. Written once, at start, and never read back by this program.
#pragma pack(push, 1)
struct SharedStatusBlock {
    u32 cbSize;    // SHARED_STATUS_BYTES
    u32 dwVersion; // SHARED_STATUS_VERSION
    u8 abZero0[20];
    u32 dwOne; // 1
    u8 abZero1[608];
    u32 dwMark; // SHARED_STATUS_MARK
    u8 abZero2[5278];
};
#pragma pack(pop)
static_assert(sizeof(SharedStatusBlock) == SHARED_STATUS_BYTES);
static_assert(offsetof(SharedStatusBlock, dwOne) == 28 && offsetof(SharedStatusBlock, dwMark) == 640);

// Creates or opens the block "PSSCDSPSharedFileMappingOF" of this user and the event "JHOFNewFrameEvent". 0 if it
// cannot be made or belongs to a running program of another size or version: this process must then leave.
u32 OpenSharedStatus();
void CloseSharedStatus();
