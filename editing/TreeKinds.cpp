// TreeKinds.cpp -- the kinds of objects that the preset tree shows, one row of facts each
#include "editing/TreeKinds.h"

#include "platform/Assert.h"

#include <iterator>

namespace {

constexpr ObjectType aeRoot[] = {OBJECT_PLANETREE, OBJECT_MIXER, OBJECT_POSTPROC};
constexpr ObjectType aePlane[] = {OBJECT_COLORTREE, OBJECT_DRAWINGTREE, OBJECT_OVERLAYTREE};
constexpr ObjectType aeColor[] = {OBJECT_COLORINTERPOLATORTREE, OBJECT_COLORGENERATORTREE, OBJECT_COLOREFFECTTREE};
constexpr ObjectType aeDrawing[] = {OBJECT_DRAWFULLTREE, OBJECT_DRAWPAINTERTREE, OBJECT_DRAWEFFECTTREE};
constexpr ObjectType aeOverlay[] = {OBJECT_OVERLAYFULLTREE, OBJECT_OVERLAYPAINTERTREE, OBJECT_OVERLAYEFFECTTREE};

#define TIP_FULLDRAW u"Full Draw:\n\nDrawing modules that generate a full image on every frame."
#define TIP_PAINTER u"Painter:\n\nDrawing modules that add to/combine with the current contents of a plane."
#define TIP_EFFECTS u"Effects:\n\nDrawing modules that modify/tweak the current contents of a plane."

constexpr ObjectKind asKind[] = {
    {nullptr, nullptr, 7, 0, {}},
    {nullptr, nullptr, 7, 0, {}},
    {nullptr, nullptr, 7, 0, {}},
    {nullptr, nullptr, 7, 0, {}},
    {nullptr, nullptr, 7, 0, {}},
    {nullptr, nullptr, 7, 0, {}},
    {nullptr, nullptr, 7, 0, {}},
    {nullptr, nullptr, 7, 0, {}},
    {nullptr, nullptr, 7, 0, {}},
    {nullptr,
     u"Preset:\n\nA configuration of planes, modules, controls, and mixing instructions that generate an output image.",
     0, 1, aeRoot},
    {u"Drawing Planes",
     u"Drawing Planes:\n\nA set of planes that are combined in the mixer to create an output image.",
     1,
     1,
     {}},
    {nullptr,
     u"Plane:\n\nA drawing surface (an image/picture) that you construct with color, drawing, and overlay modules.", 2,
     1, aePlane},
    {u"Color Modules", u"Color Modules:\n\nManage the color palettes used by drawing modules when drawing on a plane.",
     3, 1, aeColor},
    {u"Drawing Modules",
     u"Drawing Modules:\n\nDraw or modify the contents of a plane.  They are persistent and drawing accumulates over "
     u"frames.",
     4, 1, aeDrawing},
    {u"Overlay Modules",
     u"Overlay Modules:\n\nDraw or modify the contents of a plane after color indices have been resolved by the color "
     u"interpolator.  They are transient and any/all drawing is per-frame.",
     5, 1, aeOverlay},
    {u"Interpolator",
     u"Interpolator:\n\nManages transitions between color palettes and resolves palette indices to RGB values prior to "
     u"mixing.",
     3,
     1,
     {}},
    {u"Generator", u"Generator:\n\nManages the creation of color palettes.", 3, 1, {}},
    {u"Effects",
     u"Effects:\n\nManages modifications/tweaks applied to color palettes created by the color generator.",
     3,
     1,
     {}},
    {u"Full Draw", TIP_FULLDRAW, 4, 1, {}},
    {u"Painter", TIP_PAINTER, 4, 1, {}},
    {u"Effects", TIP_EFFECTS, 4, 1, {}},
    {u"Full Draw", TIP_FULLDRAW, 5, 1, {}},
    {u"Painter", TIP_PAINTER, 5, 1, {}},
    {u"Effects", TIP_EFFECTS, 5, 1, {}},
    {nullptr, nullptr, 6, 0, {}},
    {nullptr, nullptr, 6, 0, {}},
    {u"Plane Mixer",
     u"Mixer:\n\nConfigure a list of rules that control how one or more drawing planes are combined to produce a "
     u"single output image.",
     7,
     1,
     {}},
    {u"Effects",
     u"Effects:\n\nPost mixer effect modules are applied to the output image before it's displayed.",
     5,
     1,
     {}},
};
static_assert(std::size(asKind) == OBJECT_TYPES);

} // namespace

const ObjectKind &KindOf(u32 dwType)
{
    VD_ASSERT(dwType < OBJECT_TYPES);
    return asKind[dwType];
}
