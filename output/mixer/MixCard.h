// MixCard.h -- runs one-pass programs of the mix kernels on a graphics card
#pragma once

#include "output/mixer/remap.h"
#include "platform/GLCompute.h"

#include <cstddef>
#include <string>

// Where a card can be lost.
enum class CardStage : u8 { Open, Enter, Compile, Upload, Run, Wait, Download, Reset, Count };

// A card with what the kernel needs there. Zero-filled: none. Its buffers are made for one size of pictures at a time.
struct MixCard {
    GLCompute compute;
    bool bPersistent; // buffers stay mapped while the card uses them
    u32 iProgram;     // 0: nothing is made yet
    i32 iSize;        // places of the uniforms
    i32 iImages;
    i32 iSteps;
    i32 iResult;
    i32 iStep;
    i32 iWeight;
    u32 iDisplacements; // names of the buffers
    u32 iUpload;
    u32 iDownload;
    u32 aiImage[5]; // the result is the last
    u8 *pUpload;    // mapped; null without bPersistent
    const u8 *pDownload;
    size_t cbImage; // size of each; 0: none are made
    size_t cbImageMax;
};

enum class CardOutcome {
    Mixed,
    Refused, // the program or its pictures are not for this card; it can go on
    Lost,    // the card answers no more, or wrongly: close it
};

// Opens the first real card, or with bSoftware the first software renderer. *psRenderer: the driver's name for it.
// bPlainBuffers: as if it had no buffers that stay mapped. [main-thread]
bool OpenMixCard(MixCard *pCard, bool bSoftware, bool bPlainBuffers, std::string *psRenderer);
void CloseMixCard(MixCard *pCard); // null-safe for a zero-filled record, which it leaves

// Runs a program whose steps are all needed and of which one writes an image; returns when it stands there. Unless
// the outcome is Mixed the image may hold anything. *pszWhy: what was lost, in words. The context is current here
// and no more afterwards. [main-thread]
CardOutcome RunOnMixCard(MixCard *pCard, const MixProgram &prog, const u32 *anWeight, const char **pszWhy);

// For tests: asked at every stage, with the context current where it can be; true makes the stage fail as if the
// driver had said so. Null: nobody.
extern bool (*pfnLoseCard)(CardStage eStage);
