// PresetEdit.h -- the door of edits: every change that a user makes to the running preset goes through RunPresetEdit
//
// An edit is a record: what is done, where, with what. It holds no pointer into the preset, so it can be kept, sent and
// replayed. Running one gives its inverse, which is an edit too; running inverses in reverse order brings every field
// of every record back to what it was. What a module keeps to itself is not part of it: a module that is brought back
// is a new instance with the old settings.
#pragma once

#include "editing/EditFields.h"
#include "editing/EditKeeps.h"

#include <memory>

enum class EditKind : u32 {
    None,        // what stands in the inverse of an edit that changed nothing
    SetFields,   // writes; place: None
    AddPlane,    // anArgument[0]: indexed; [1]: with the default modules. Place: Preset
    RemovePlane, // and all rules
    MovePlane,   // anArgument[0]: -1 up, 1 down; exchanges it with its neighbour
    PausePlane,  // or resumes it
    ClearPlane,  // makes its picture black; has no inverse
    AddModule,   // sText: the library; anArgument[0]: number of a shader plus one, or 0. Place: List
    RemoveModule,
    MoveModule,    // as MovePlane, within its list
    PauseModule,   // or resumes it
    RestoreItem,   // defaults of a plane, a module (without its controls) or a control
    RestoreBranch, // the same for all that stands in the place
    AddRule,       // anArgument: SrcIdx1, SrcIdx2, AplhaIdx, MixOp. Place: Preset
    RemoveRule,    // never the last one
    MoveRule,      // as MovePlane

    // Only made as inverses
    PutBack,      // writes
    TakePlane,    // removes it and leaves the rules as they are
    InsertPlane,  // pKeep; anArgument[0]: the rules too
    InsertModule, // pKeep
    TakeRule,     // also the last one
    InsertRule,   // pKeep
    Count
};

struct PresetEdit {
    EditKind eKind;
    EditPlace place;
    i32 anArgument[4];
    std::u16string sText;
    std::vector<FieldWrite> writes;
    std::shared_ptr<const EditKeep> pKeep; // of an inverse: what it brings back
};

enum class EditResult {
    Refused,   // no such place, arguments that do not fit, or a thread hangs in a module of the plane (which may still
               // be removed): nothing happened
    Unchanged, // nothing to do or no room: a module at the end of its list, a fifth plane, no such library
    Done
};

// Runs it on the current preset, tells the news and marks the preset where the kind of edit asks for it; an edit of the
// tree also marks where nothing was changed. pInverse (may be null, or &edit) gets the inverse; kind None unless Done.
// [main-thread]
EditResult RunPresetEdit(const PresetEdit &edit, PresetEdit *pInverse = nullptr);

// What the edit does, for the user: the field's name where it writes fields. Never null.
const char16_t *EditName(const PresetEdit &edit);
// Whether the edit only undoes another: not to be taken from outside.
bool EditIsInverse(const PresetEdit &edit);

// Most edits are a kind and a place, or one value.
PresetEdit MakeEdit(EditKind eKind, const EditPlace &place, i32 nArgument0 = 0, i32 nArgument1 = 0);
PresetEdit MakeFieldEdit(FieldWrite write);
PresetEdit MakeModuleEdit(const EditPlace &list, std::u16string_view dll, i32 nShader = 0);
PresetEdit MakeRuleEdit(i32 nSource1, i32 nSource2, i32 nMask, i32 nMixOp);

// A drag is one edit: begun at a control, module, plane or rule, many values of its fields, an end. Each value acts at
// once. The record belongs to the window that drags.
struct EditDrag {
    EditPlace place;      // kind None: no drag
    const void *pvPreset; // compared, not followed: the drag is over when something else stands there
    const void *pvRecord;
    std::vector<FieldWrite> before; // what the fields held when the drag first wrote them
};
// False, with nothing begun: there is nothing at the place. A drag that is still open is forgotten.
bool BeginDrag(EditDrag *pDrag, const EditPlace &place);
// Refused also when the place now names another record, and when a write is for another place.
EditResult DragValue(EditDrag *pDrag, std::vector<FieldWrite> writes);
// Gives the inverse of the whole drag; kind None if it changed nothing.
void EndDrag(EditDrag *pDrag, PresetEdit *pInverse);
