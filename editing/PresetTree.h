// PresetTree.h -- the tree of the running preset: planes, lists, modules, groups and controls as nodes
//
// All on the main thread. A node keeps its address until it is deleted, and copies its text: modules may write new
// names into their controls while they run. What nodes point to belongs to the preset; a tree that outlives its
// preset's objects must be told so, see TreeFollower.h.
#pragma once

#include "editing/TreeKinds.h"
#include "platform/Listeners.h"
#include "state/PresetState.h"

#include <string>
#include <string_view>
#include <vector>

struct PresetTree;
struct TreeNode;

using PanelWindow = void; // a window of the panels, which alone know its type

// What a node is, and the windows that belong to it. Zero-filled apart from dwType it stands for no object.
struct TVObjectInfo {
    u32 dwType;              // ObjectType
    ModuleSlot *pOwnerSlot;  // of a module, a control or a declared group; else null
    PanelWindow *hSlider;    // the panel's range slider; null: none
    PanelWindow *hPanel;     // null: closed
    PanelWindow *hWavePanel; // the sub-panels of the fluid sources
    PanelWindow *hRandomPanel;
    PanelWindow *hSoundPanel;
    PresetTree *hTree;
    u32 bPinned;
    TreeNode *hItem;
    u32 bOwnsObject; // pObject is a ControlRecord that the tree made, and goes with the node
    void *pObject;   // ModuleSlot, PresetState, PlaneState or ControlRecord, as the kind says; null: none
};

struct TreeNode {
    std::u16string sText;
    TVObjectInfo Info;
    TreeNode *pParent;               // null: the root, or not in the tree yet
    std::vector<TreeNode *> apChild; // owned
    u32 nRow;                        // place in the parent's apChild, always right
    u32 bExpanded;
    u64 nTurn;     // paint turn in which bChanged was found out; 0: never
    bool bChanged; // what BranchHasChanges answered
};

enum class TreeNewsKind : u32 {
    Resetting, // the tree loses all nodes and may get others; NodeGoes has been told of each
    Reset,
    Inserting, // pNode with its branch is about to stand under pParent at nRow
    Inserted,
    Removing, // pNode at nRow of pParent is about to go with its branch; NodeGoes has been told of each
    Removed,
    Moving, // pNode at nRow of pParent is about to move under pTo, in front of what stands at nTo before the move
    Moved,
    Changed,       // the text of pNode
    BranchChanged, // pNode and all below it are to be painted anew, with the texts that they have
    Expansion,     // bExpanded of pNode, or of pNode and nodes below it
};

// An -ing is always followed by its -ed, with the same fields and nothing between the two: what a model needs to begin
// and end its own notices. Within Removed pNode still stands, out of the tree.
struct TreeNews {
    TreeNewsKind eKind;
    TreeNode *pNode; // null for Resetting and Reset
    TreeNode *pParent;
    u32 nRow;
    TreeNode *pTo;
    u32 nTo;
};

struct PresetTree {
    PresetTree() = default;
    PresetTree(const PresetTree &) = delete;
    PresetTree &operator=(const PresetTree &) = delete;
    ~PresetTree();

    TreeNode *pRoot = nullptr;       // null: there is no preset
    PresetState *lppsi = nullptr;    // whose tree it is
    std::u16string sTitle = u"Root"; // text of the root, kept when the tree is built anew
    u64 nTurn = 1;                   // paint turn, see BeginPaintTurn

    // Told of everything that happens to the tree. Who listens does not change the tree from there.
    Listeners<void(const TreeNews &news)> TreeListeners;
    // A node is about to be deleted: its panels close now. Told of each node of a branch, children first, while the
    // branch still stands where it stood and all objects are there.
    Listeners<void(TreeNode *pNode)> NodeListeners;
};

// Deletes all nodes and builds the tree of the preset; null: an empty tree. Told as one reset.
void BuildPresetTree(PresetTree &tree, PresetState *lppsi);
// What both return is null where memory ran out; a branch whose inner nodes could not be made stays incomplete.
// Adds the plane at the end of the parent, an OBJECT_PLANETREE, with its categories, lists and modules.
TreeNode *AddPlaneBranch(PresetTree &tree, TreeNode *pParent, PlaneState *pps);
// Adds the module at the end of the parent, a list or OBJECT_POSTPROC, and the nodes of all its controls.
TreeNode *AddModuleBranch(PresetTree &tree, TreeNode *pParent, u32 dwType, ModuleSlot *pms);

// Depth first from pStart (null: from the root); null if there is none.
TreeNode *FindNodeByObject(const PresetTree &tree, TreeNode *pStart, const void *pObject);
// The same among nodes of one kind, or, for a module kind, of all module kinds. The object is only compared.
TreeNode *FindNodeOfType(const PresetTree &tree, u32 dwType, const void *pObject);
// The first child of that kind, or null.
TreeNode *ChildOfType(const TreeNode *pParent, u32 dwType);
// n from 0; null beyond the planes.
TreeNode *NthPlaneNode(const PresetTree &tree, u32 n);
// The node itself counts as inside.
bool IsInBranch(const TreeNode *pNode, const TreeNode *pBranch);
// The node of that kind, or of a module for a module kind, that the node is or lies in; null if there is none.
TreeNode *EnclosingNode(TreeNode *pNode, u32 dwType);

// The object of a node where the kind says that it is one; else null.
ModuleSlot *SlotOf(const TreeNode *pNode);
PlaneState *PlaneOf(const TreeNode *pNode);
ControlRecord *ControlOf(const TreeNode *pNode);

// Deletes the node with its branch, closes its panels and frees what it owns. For the root: all of the tree.
void DeleteNode(PresetTree &tree, TreeNode *pNode);
// Puts the node with its branch under pParent, behind the child pAfter (null: as the first). Text, record and expansion
// stay. False, with nothing changed, for the root, into its own branch, or behind what is no child of pParent.
bool MoveNode(PresetTree &tree, TreeNode *pNode, TreeNode *pParent, TreeNode *pAfter);
void SetNodeText(PresetTree &tree, TreeNode *pNode, std::u16string_view text);
void SetExpanded(PresetTree &tree, TreeNode *pNode, bool bExpanded);
// The node and all its descendants.
void ExpandBranch(PresetTree &tree, TreeNode *pNode, bool bExpanded);

// Whether the node or a descendant is an OBJECT_CONTROL that is not at its default. Each node is looked at once a paint
// turn at most; until the turn ends the answer stays what it was, whatever panels and plane threads write meanwhile.
// A turn ends with BeginPaintTurn, RepaintBranch and every change of the tree.
bool BranchHasChanges(PresetTree &tree, TreeNode *pNode);
void BeginPaintTurn(PresetTree &tree);
// To be called after an edit: the branch is painted anew.
void RepaintBranch(PresetTree &tree, TreeNode *pNode);
