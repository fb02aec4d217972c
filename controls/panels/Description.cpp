// Description.cpp -- what the description panel of a group of controls says
#include "controls/panels/Description.h"

#include "controls/ControlManager.h"
#include "controls/panels/Panels.h"
#include "platform/Text.h"

namespace {

std::u16string LastComponent(const ControlRecord *pctl)
{
    NameText szName;
    ControlDottedName(pctl, szName);
    const std::u16string_view name = szName;
    return std::u16string(name.substr(name.rfind(u'.') + 1)); // npos + 1 is 0: all of it
}

std::u16string ChildText(const ControlRecord *pctl)
{
    return u"\r\n\t* " + LastComponent(pctl) + u": \t" +
           std::u16string(pctl->Base.szDescription, TextLength(pctl->Base.szDescription, CONTROL_TEXT));
}

} // namespace

std::u16string GroupText(const TreeNode *pGroup)
{
    const ControlRecord *pctl = ControlOf(pGroup);
    if (!pctl)
        return {};
    std::u16string s = DescriptionText(pctl) + u"\r\n\r\nContains the following child controls:\n";
    for (const TreeNode *pChild : pGroup->apChild)
        if (const ControlRecord *pctlChild = ControlOf(pChild))
            s += ChildText(pctlChild);
    s.resize(std::min<size_t>(s.size(), DESCRIPTION_CHARS - 1));
    return s;
}
