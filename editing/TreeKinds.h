// TreeKinds.h -- the kinds of objects that the preset tree shows, one row of facts each
#pragma once

#include "platform/BaseTypes.h"

#include <span>

// A module's kind is the number of its list, so that a module node says which list it is in. Those of post-processing
// are OBJECT_OVERLAYEFFECT.
enum ObjectType : u32 {
    OBJECT_COLORINTERPOLATOR = 0,
    OBJECT_COLORGENERATOR,
    OBJECT_COLOREFFECT,
    OBJECT_DRAWFULL,
    OBJECT_DRAWPAINTER,
    OBJECT_DRAWEFFECT,
    OBJECT_OVERLAYFULL,
    OBJECT_OVERLAYPAINTER,
    OBJECT_OVERLAYEFFECT,
    OBJECT_MODULELAST = OBJECT_OVERLAYEFFECT,
    OBJECT_ROOT,
    OBJECT_PLANETREE,
    OBJECT_PLANE,
    OBJECT_COLORTREE,
    OBJECT_DRAWINGTREE,
    OBJECT_OVERLAYTREE,
    OBJECT_COLORINTERPOLATORTREE, // the nine lists of a plane, in the order of the modules' kinds
    OBJECT_COLORGENERATORTREE,
    OBJECT_COLOREFFECTTREE,
    OBJECT_DRAWFULLTREE,
    OBJECT_DRAWPAINTERTREE,
    OBJECT_DRAWEFFECTTREE,
    OBJECT_OVERLAYFULLTREE,
    OBJECT_OVERLAYPAINTERTREE,
    OBJECT_OVERLAYEFFECTTREE,
    OBJECT_CONTROLTREE,
    OBJECT_CONTROL,
    OBJECT_MIXER,
    OBJECT_POSTPROC,
    OBJECT_TYPES
};

struct ObjectKind {
    const char16_t *pszText;              // null: the text comes from the object
    const char16_t *pszTip;               // null: the tip comes from the object
    u32 nIcon;                            // 0 to 7
    u32 bExpanded;                        // how a new node starts
    std::span<const ObjectType> children; // that every node of the kind has, in order; more may follow
};

const ObjectKind &KindOf(u32 dwType);

constexpr bool IsModuleType(u32 dwType)
{
    return dwType <= OBJECT_MODULELAST;
}
constexpr bool IsListType(u32 dwType)
{
    return dwType >= OBJECT_COLORINTERPOLATORTREE && dwType <= OBJECT_OVERLAYEFFECTTREE;
}
constexpr bool IsControlType(u32 dwType)
{
    return dwType == OBJECT_CONTROLTREE || dwType == OBJECT_CONTROL;
}
// The kind of the modules in a list of a plane, which is the list's number too.
constexpr u32 ModuleTypeOfList(u32 dwListType)
{
    return dwListType - OBJECT_COLORINTERPOLATORTREE;
}
