// ShaderList.cpp -- the shader files of the data folder as variants of the shader module
#include "modules/ShaderList.h"

#include "platform/Assert.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/Text.h"
#include "state/Folders.h"

#include <cstdlib>
#include <string>

namespace {

ShaderList *pList; // null until there is a shader file

// Shaders draw whole pictures, on planes of both types.
constexpr u32 SHADER_CAPABILITIES = MODULECAP_FULL | MODULECAP_INDEXED | MODULECAP_RGB;

void AddShader(std::u16string_view path)
{
    if (path.size() >= NAME_CHARS) {
        AddNotice(ToUtf8(path) + ": the path is too long, the shader is left out");
        return;
    }
    ShaderEntry *pse = &pList->asEntry[pList->nCount++];
    pse->dwClass = MODULECLASS_DRAWING;
    pse->dwCapabilities = SHADER_CAPABILITIES;
    CopyText(pse->szPath, path);
    CopyText(pse->szName, NameWithoutExtension(path));
}

// Without a file there is no list, and the next lookup searches again.
ShaderList *NeedList()
{
    if (pList)
        return pList;
    const std::vector<std::u16string> paths = ListFiles(FolderPath(PATH_SHADERS_PATTERN));
    if (paths.empty())
        return nullptr;
    pList = static_cast<ShaderList *>(std::calloc(1, sizeof(ShaderList)));
    VD_ASSERT(pList);
    for (const std::u16string &path : paths)
        if (pList->nCount < static_cast<i32>(SHADERS_MAX))
            AddShader(path);
    return pList;
}

} // namespace

const ShaderEntry *GetShaderEntry(u32 iShader)
{
    ASSERT_MAIN_THREAD();
    const ShaderList *psl = NeedList();
    return psl && iShader < static_cast<u32>(psl->nCount) ? &psl->asEntry[iShader] : nullptr;
}

u32 FindShaderByName(std::u16string_view name)
{
    for (u32 i = 0; const ShaderEntry *pse = GetShaderEntry(i); i++)
        if (EqualNoCase(pse->szName, name))
            return i + 1;
    return 0;
}

void FreeShaderList()
{
    std::free(pList);
    pList = nullptr;
}
