/* control.h -- the control record: one parameter of a module, shared between the module and the host
 *
 * A module asks for one record per parameter with AllocControl while ModuleBuildControlStructure runs, fills
 * it in at once and keeps its address. From then on the host animates the record and the user edits it;
 * the module only reads the field marked "read by the module", in ModuleInitialize and ModuleDrawFrame,
 * and never while it is being built. There is no notification: read it again each time.
 *
 * What a module must fill in: Base.dwType, Base.szName, Base.szDescription, Base.dwSourceMask; for each
 * default field that it changes, the current twin as well (a record whose halves differ counts as edited);
 * then, by type: integer and float all eight range and value fields; item select nItems, pItems, both
 * values and bOwnsItems; boolean all four; file select pszFileType and pszEditor; tile nothing.
 *
 * Who frees what: the record, tile masks and file lists belong to the host. The rows of an item select
 * belong to the module unless bOwnsItems is set, and stay its own if it exchanges them after building.
 *
 * After every call the host takes back what a module must leave alone once building has ended: the type,
 * the dependency, the owner, the ends of the texts and the host's pointers. Compiles as C11 and as C++20.
 */
#ifndef VORTICADE_CONTROL_H
#define VORTICADE_CONTROL_H

#include "hosttypes.h"

#define CONTROL_TEXT 260     /* characters in a text field, the terminating 0 included */
#define CONTROLS_MAX 140     /* controls of one module instance; AllocControl answers null beyond */
#define CONTROL_TILES_MAX 32 /* columns and rows of a tile mask */

/* Base.dwType */
enum {
    CONTROLTYPE_UNDEFINED = 0,
    CONTROLTYPE_GROUP = 1,      /* a parent node in the tree; no value */
    CONTROLTYPE_INTEGER = 2,    /* ControlInteger */
    CONTROLTYPE_ITEMSELECT = 3, /* ControlItemSelect */
    CONTROLTYPE_FLOAT = 4,      /* ControlFloat */
    CONTROLTYPE_BOOLEAN = 5,    /* ControlBoolean */
    CONTROLTYPE_FILESELECT = 6, /* ControlFileSelect */
    CONTROLTYPE_TILE = 7        /* ControlTile */
};

/* Base.dwSourceMask (any of them), Base.dwSource and Base.dwDefaultSource (one of them) */
enum {
    FLUIDSOURCE_FIXED = 1,     /* "Fixed Value": stays as the user set it */
    FLUIDSOURCE_RANDOM = 2,    /* "Randomly Initialized": drawn at each reset of the module */
    FLUIDSOURCE_WAVE = 4,      /* "Wave" */
    FLUIDSOURCE_SOUND = 8,     /* "Sound": follows the sound level */
    FLUIDSOURCE_PERIODIC = 16, /* "Periodically Randomized" */
    FLUIDSOURCE_ANIMATED = FLUIDSOURCE_WAVE | FLUIDSOURCE_SOUND | FLUIDSOURCE_PERIODIC
};

/* Base.dwWaveType */
enum { WAVETYPE_SINE = 0, WAVETYPE_TRIANGLE = 1, WAVETYPE_SQUARE = 2, WAVETYPE_RAMP = 3 };

/* Base.dwDependOp: how the value of the control depended upon is compared with the comparand */
enum {
    DEPENDOP_EQUAL = 0,
    DEPENDOP_NOTEQUAL = 1,
    DEPENDOP_GREATER = 2,
    DEPENDOP_LESS = 3,
    DEPENDOP_LESSEQUAL = 4,
    DEPENDOP_GREATEREQUAL = 5
};

struct ControlRecord;

/* The head that all controls share. In the comments: (m) written by the module, (h) by the host. */
typedef struct ControlBase {
    uint32_t dwType;                      /* (m) CONTROLTYPE_* */
    uint32_t dwReserved1;                 /* 1; carried, never interpreted */
    uint32_t dwReserved2;                 /* 0; carried, never interpreted */
    char16_t szName[CONTROL_TEXT];        /* (m) path components, each ends in a 0, the list in a second 0:
                                             u"Outer\0Inner\0Speed\0". The last one is the control's own name;
                                             those before it are the groups it stands in. No full stops. */
    char16_t szDescription[CONTROL_TEXT]; /* (m) help text; default "This is a text string." */
    uint32_t dwSourceMask;                /* (m) FLUIDSOURCE_* bits offered to the user; item selects offer
                                             no animated source */
    uint32_t dwDefaultSource;             /* (m) default FLUIDSOURCE_FIXED */
    uint32_t dwSource;                    /* current source */
    uint32_t nDefaultWavePeriod;          /* (m) milliseconds; default 8000 */
    uint32_t nWavePeriod;                 /* milliseconds, 400 to 120000; 181 stands still */
    uint32_t bDefaultRandomPhase;         /* (m) default 1 */
    uint32_t bRandomPhase;                /* non-zero: each reset draws a new phase */
    float fDefaultWavePhase;              /* (m) default 0 */
    float fWavePhase;                     /* fraction of a period, 0 to 1 */
    uint32_t dwDefaultWaveType;           /* (m) WAVETYPE_*; default sine */
    uint32_t dwWaveType;                  /* current wave */
    uint32_t nDefaultSamples;             /* (m) default 0 */
    uint32_t nSamples;                    /* length of the sound smoothing, 0 to 44 */
    uint32_t nDefaultNoisePeriod;         /* (m) milliseconds; default 1500 */
    uint32_t nNoisePeriod;                /* milliseconds between the draws of FLUIDSOURCE_PERIODIC */
    uint64_t qwNextNoiseTick;             /* (h) millisecond tick of the next draw */
    float fLastRandom;                    /* (h) last random number drawn for this control, 0 to 1 */
    uint32_t dwReserved3;                 /* 0 */
    uint32_t bHasDependents;              /* (m) non-zero: other controls name this one in pDependsOn */
    uint32_t dwReserved4;                 /* 0 */
    struct ControlRecord *pDependsOn;     /* (m) control of the same instance whose value decides whether this
                                             one shows as active; null: always active */
    int32_t nDependValue;                 /* (m) comparand for integer, item select and boolean */
    float fDependValue;                   /* (m) comparand for a float */
    uint32_t dwDependOp;                  /* (m) DEPENDOP_* */
    uint32_t dwReserved5;                 /* 0 */
    void *pOwner;                         /* (h) the host's record of the instance; opaque to modules */
} ControlBase;

static_assert(sizeof(ControlBase) == 0x490, "ControlBase");
VD_ASSERT_OFFSET(ControlBase, dwReserved1, 0x004);
VD_ASSERT_OFFSET(ControlBase, dwReserved2, 0x008);
VD_ASSERT_OFFSET(ControlBase, szName, 0x00C);
VD_ASSERT_OFFSET(ControlBase, szDescription, 0x214);
VD_ASSERT_OFFSET(ControlBase, dwSourceMask, 0x41C);
VD_ASSERT_OFFSET(ControlBase, dwDefaultSource, 0x420);
VD_ASSERT_OFFSET(ControlBase, dwSource, 0x424);
VD_ASSERT_OFFSET(ControlBase, nDefaultWavePeriod, 0x428);
VD_ASSERT_OFFSET(ControlBase, nWavePeriod, 0x42C);
VD_ASSERT_OFFSET(ControlBase, bDefaultRandomPhase, 0x430);
VD_ASSERT_OFFSET(ControlBase, bRandomPhase, 0x434);
VD_ASSERT_OFFSET(ControlBase, fDefaultWavePhase, 0x438);
VD_ASSERT_OFFSET(ControlBase, fWavePhase, 0x43C);
VD_ASSERT_OFFSET(ControlBase, dwDefaultWaveType, 0x440);
VD_ASSERT_OFFSET(ControlBase, dwWaveType, 0x444);
VD_ASSERT_OFFSET(ControlBase, nDefaultSamples, 0x448);
VD_ASSERT_OFFSET(ControlBase, nSamples, 0x44C);
VD_ASSERT_OFFSET(ControlBase, nDefaultNoisePeriod, 0x450);
VD_ASSERT_OFFSET(ControlBase, nNoisePeriod, 0x454);
VD_ASSERT_OFFSET(ControlBase, qwNextNoiseTick, 0x458);
VD_ASSERT_OFFSET(ControlBase, fLastRandom, 0x460);
VD_ASSERT_OFFSET(ControlBase, bHasDependents, 0x468);
VD_ASSERT_OFFSET(ControlBase, pDependsOn, 0x470);
VD_ASSERT_OFFSET(ControlBase, nDependValue, 0x478);
VD_ASSERT_OFFSET(ControlBase, fDependValue, 0x47C);
VD_ASSERT_OFFSET(ControlBase, dwDependOp, 0x480);
VD_ASSERT_OFFSET(ControlBase, pOwner, 0x488);

typedef struct ControlInteger {
    int32_t nAbsMin;       /* (m) lowest legal value */
    int32_t nAbsMax;       /* (m) highest legal value */
    int32_t nDefaultMin;   /* (m) default low end of the animated range */
    int32_t nDefaultMax;   /* (m) default high end */
    int32_t nMin;          /* (m) current low end */
    int32_t nMax;          /* (m) current high end; nothing orders it above nMin */
    int32_t nValue;        /* READ BY THE MODULE. Under sound it can leave the absolute range: limit it. */
    int32_t nDefaultValue; /* (m) */
    uint32_t bOnlyEven;    /* animated values are even */
    uint32_t bOnlyOdd;     /* animated values are odd */
    uint32_t bMinMax;      /* animated values snap to nMin or nMax */
} ControlInteger;

typedef struct ControlFloat {
    float fAbsMin;       /* (m) as in ControlInteger */
    float fAbsMax;       /* (m) */
    float fDefaultMin;   /* (m) */
    float fDefaultMax;   /* (m) */
    float fMin;          /* (m) */
    float fMax;          /* (m) */
    float fValue;        /* READ BY THE MODULE. Under sound it can leave the absolute range: limit it. */
    float fDefaultValue; /* (m) */
    uint32_t bMinMax;    /* animated values snap to fMin or fMax */
} ControlFloat;

/* One row of an item select. The record stores a row's value, not its place; rows whose values are
 * 0 to nItems - 1 are what a random source expects. */
typedef struct ItemSelectRow {
    const char16_t *pszText; /* display text */
    uint32_t dwValue;        /* below 9999 */
    uint32_t dwReserved;     /* 0 */
} ItemSelectRow;

typedef struct ControlItemSelect {
    uint32_t nItems;            /* (m) rows at pItems */
    uint32_t nDefaultItemValue; /* (m) */
    uint32_t nCurrentItemValue; /* READ BY THE MODULE: the chosen row's value. Files can hold any number. */
    uint32_t bOwnsItems;        /* (m) non-zero: pItems and every row's text came from malloc and the host
                                   frees them with the record */
    ItemSelectRow *pItems;      /* (m) */
} ControlItemSelect;

typedef struct ControlBoolean {
    float fThreshold;        /* (m) 0 to 1: an animated unit value above it switches on */
    float fDefaultThreshold; /* (m) */
    uint32_t bDefaultState;  /* (m) */
    uint32_t bState;         /* READ BY THE MODULE (and set at first by it) */
} ControlBoolean;

typedef struct ControlFileSelect {
    char16_t *pszFileList;       /* (h) one file a line, CR LF between lines; null when empty */
    const char16_t *pszFileType; /* (m) what the list holds: a text with "Picture", ".pal", ".glsl" or
                                    ".playlist", else a filter for the file dialog */
    const char16_t *pszEditor;   /* (m) program behind "Edit/Create..."; null: none */
    uint32_t nCurrentLine;       /* (h) line in szCurrentFile */
    uint32_t nLines;             /* (h) non-empty lines; all ones: to be counted again */
    uint32_t *pLineOffsets;      /* (h) character offset of each line in pszFileList */
    uint32_t bShuffle;           /* resets take a random line instead of the next one */
    char16_t szCurrentFile[CONTROL_TEXT]; /* READ BY THE MODULE: the file of the moment; may not exist */
} ControlFileSelect;

typedef struct ControlTile {
    uint32_t nXTiles;    /* (h) columns: 32 */
    uint32_t nYTiles;    /* (h) rows: 32 */
    uint32_t nXLimit;    /* (h) 32 */
    uint32_t nYLimit;    /* (h) 32 */
    uint32_t *pTileMask; /* READ BY THE MODULE: non-zero means on; index = row x nXTiles + column */
} ControlTile;

typedef struct ControlRecord {
    ControlBase Base;
    union {
        ControlInteger Integer;
        ControlFloat Float;
        ControlItemSelect ItemSelect;
        ControlBoolean Boolean;
        ControlFileSelect FileSelect;
        ControlTile Tile;
    };
} ControlRecord;

static_assert(sizeof(ControlRecord) == 1736, "ControlRecord");
static_assert(sizeof(ItemSelectRow) == 16, "ItemSelectRow");
VD_ASSERT_OFFSET(ControlRecord, Integer.nAbsMin, 0x490);
VD_ASSERT_OFFSET(ControlRecord, Integer.nAbsMax, 0x494);
VD_ASSERT_OFFSET(ControlRecord, Integer.nDefaultMin, 0x498);
VD_ASSERT_OFFSET(ControlRecord, Integer.nDefaultMax, 0x49C);
VD_ASSERT_OFFSET(ControlRecord, Integer.nMin, 0x4A0);
VD_ASSERT_OFFSET(ControlRecord, Integer.nMax, 0x4A4);
VD_ASSERT_OFFSET(ControlRecord, Integer.nValue, 0x4A8);
VD_ASSERT_OFFSET(ControlRecord, Integer.nDefaultValue, 0x4AC);
VD_ASSERT_OFFSET(ControlRecord, Integer.bOnlyEven, 0x4B0);
VD_ASSERT_OFFSET(ControlRecord, Integer.bOnlyOdd, 0x4B4);
VD_ASSERT_OFFSET(ControlRecord, Integer.bMinMax, 0x4B8);
VD_ASSERT_OFFSET(ControlRecord, Float.fAbsMin, 0x490);
VD_ASSERT_OFFSET(ControlRecord, Float.fAbsMax, 0x494);
VD_ASSERT_OFFSET(ControlRecord, Float.fDefaultMin, 0x498);
VD_ASSERT_OFFSET(ControlRecord, Float.fDefaultMax, 0x49C);
VD_ASSERT_OFFSET(ControlRecord, Float.fMin, 0x4A0);
VD_ASSERT_OFFSET(ControlRecord, Float.fMax, 0x4A4);
VD_ASSERT_OFFSET(ControlRecord, Float.fValue, 0x4A8);
VD_ASSERT_OFFSET(ControlRecord, Float.fDefaultValue, 0x4AC);
VD_ASSERT_OFFSET(ControlRecord, Float.bMinMax, 0x4B0);
VD_ASSERT_OFFSET(ControlRecord, ItemSelect.nItems, 0x490);
VD_ASSERT_OFFSET(ControlRecord, ItemSelect.nDefaultItemValue, 0x494);
VD_ASSERT_OFFSET(ControlRecord, ItemSelect.nCurrentItemValue, 0x498);
VD_ASSERT_OFFSET(ControlRecord, ItemSelect.bOwnsItems, 0x49C);
VD_ASSERT_OFFSET(ControlRecord, ItemSelect.pItems, 0x4A0);
VD_ASSERT_OFFSET(ControlRecord, Boolean.fThreshold, 0x490);
VD_ASSERT_OFFSET(ControlRecord, Boolean.fDefaultThreshold, 0x494);
VD_ASSERT_OFFSET(ControlRecord, Boolean.bDefaultState, 0x498);
VD_ASSERT_OFFSET(ControlRecord, Boolean.bState, 0x49C);
VD_ASSERT_OFFSET(ControlRecord, FileSelect.pszFileList, 0x490);
VD_ASSERT_OFFSET(ControlRecord, FileSelect.pszFileType, 0x498);
VD_ASSERT_OFFSET(ControlRecord, FileSelect.pszEditor, 0x4A0);
VD_ASSERT_OFFSET(ControlRecord, FileSelect.nCurrentLine, 0x4A8);
VD_ASSERT_OFFSET(ControlRecord, FileSelect.nLines, 0x4AC);
VD_ASSERT_OFFSET(ControlRecord, FileSelect.pLineOffsets, 0x4B0);
VD_ASSERT_OFFSET(ControlRecord, FileSelect.bShuffle, 0x4B8);
VD_ASSERT_OFFSET(ControlRecord, FileSelect.szCurrentFile, 0x4BC);
VD_ASSERT_OFFSET(ControlRecord, Tile.nXTiles, 0x490);
VD_ASSERT_OFFSET(ControlRecord, Tile.nYTiles, 0x494);
VD_ASSERT_OFFSET(ControlRecord, Tile.nXLimit, 0x498);
VD_ASSERT_OFFSET(ControlRecord, Tile.nYLimit, 0x49C);
VD_ASSERT_OFFSET(ControlRecord, Tile.pTileMask, 0x4A0);

#endif
