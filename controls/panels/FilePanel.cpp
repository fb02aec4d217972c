// FilePanel.cpp -- what the panel of a file select does: its choosers, its list's text, what it writes
#include "controls/panels/FilePanel.h"

#include "controls/ControlManager.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <algorithm>

namespace {

constexpr u32 TYPE_CHARS = 4096; // of a module's text

// The last row fits everything.
constexpr ListChooserRow asChooser[] = {
    {u"Picture", ListChooser::Image, PATH_IMAGES}, {u".pal", ListChooser::Palettes, PATH_PALETTES},
    {u".glsl", ListChooser::Files, PATH_SHADERS},  {u".playlist", ListChooser::Files, PATH_SHADERTOY_PLAYLISTS},
    {u"", ListChooser::Files, PATH_PROGRAM},
};

// CR, LF, and what text boxes take for them.
constexpr std::u16string_view BREAKS = u"\r\n\u2029\uFDD0\uFDD1";

bool IsBreak(char16_t ch)
{
    return BREAKS.find(ch) != BREAKS.npos;
}

std::u16string TextOf(const ControlRecord *pctl, const char16_t *ControlFileSelect::*ppsz)
{
    if (!pctl || pctl->Base.dwType != CONTROLTYPE_FILESELECT || !(pctl->FileSelect.*ppsz))
        return {};
    const char16_t *psz = pctl->FileSelect.*ppsz;
    return std::u16string(psz, TextLength(psz, TYPE_CHARS));
}

std::u16string ReducedName(const std::u16string &path)
{
    if (path.size() >= NAME_CHARS) // longer than what a module gets, but the list holds it whole
        return std::u16string(LiesInDataFolder(path) ? NameAndExtension(path) : path);
    NameText szPath;
    CopyText(szPath, path);
    MakeDataFileRelative(szPath);
    return szPath;
}

void AddFile(AddedFiles *pAdded, const std::u16string &path)
{
    const std::u16string name = ReducedName(path);
    if (std::any_of(name.begin(), name.end(), [](char16_t ch) { return IsBreak(ch) || !ch; })) {
        pAdded->nBroken++;
        return;
    }
    if (pAdded->sList.size() + name.size() + 2 > FILE_LIST_CHARS) {
        pAdded->nNoRoom++;
        return;
    }
    pAdded->sList.append(name).append(u"\r\n");
    pAdded->nAdded++;
}

std::string FilesWere(u32 nFiles)
{
    return nFiles == 1 ? "1 file was" : std::to_string(nFiles) + " files were";
}

} // namespace

const char16_t *const pszImageFilter = u"BMP (*.bmp,*.dib,*.rle)\t*.bmp;*.dib;*.rle\t"
                                       u"JPEG (*.jpg,*.jpeg)\t*.jpg;*.jpeg\t"
                                       u"PNG (*.png)\t*.png\t"
                                       u"GIF (*.gif)\t*.gif\t"
                                       u"TIFF (*.tiff,*.tif)\t*.tiff;*.tif\t"
                                       u"Animation (*.1)\t*.1\t"
                                       u"Pictures\t*.bmp;*.dib;*.rle;*.jpg;*.jpeg;*.png;*.gif;*.tiff;*.tif;*.1\t"
                                       u"All files (*.*)\t*.*\t\t";

const ListChooserRow &ChooserOf(std::u16string_view type)
{
    return *std::find_if(std::begin(asChooser), std::end(asChooser) - 1,
                         [=](const ListChooserRow &row) { return ContainsNoCase(type, row.pszContains); });
}

std::u16string ListFilter(std::u16string_view type)
{
    if (type.empty())
        return u"All Files (*.*)\t*.*\t\t";
    if (type.find(u'\t') != type.npos && type.find(u"\t\t") != type.npos)
        return std::u16string(type);
    return std::u16string(type).append(u" Files\t").append(type).append(u"\t\t");
}

std::u16string FileTypeOf(const ControlRecord *pctl)
{
    return TextOf(pctl, &ControlFileSelect::pszFileType);
}

std::u16string EditorOf(const ControlRecord *pctl)
{
    return TextOf(pctl, &ControlFileSelect::pszEditor);
}

std::vector<std::u16string> EditorPaths(std::u16string_view editor)
{
    if (editor.empty())
        return {};
    return {std::u16string(editor), JoinPath(FolderPath(PATH_PROGRAM), editor)};
}

std::u16string ListWithBreaks(std::u16string_view text)
{
    std::u16string list;
    list.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); i++) {
        const char16_t ch = text[i];
        if (ch > u'\r' && ch < BREAKS[2]) {
            list += ch; // nearly all of them
            continue;
        }
        if (ch == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
            i++;
        if (IsBreak(ch))
            list += u"\r\n";
        else if (ch)
            list += ch;
    }
    return list;
}

// Each file has a line of its own, also behind a last line that was left open.
AddedFiles AddFilesToList(std::u16string_view list, const std::vector<std::u16string> &paths)
{
    AddedFiles added = {ListWithBreaks(list), 0, 0, 0};
    if (paths.size() == 1 && !FileExists(paths[0]))
        return added;
    const size_t nBefore = added.sList.size();
    if (nBefore && added.sList.back() != u'\n')
        added.sList += u"\r\n";
    for (const std::u16string &path : paths)
        AddFile(&added, path);
    if (!added.nAdded)
        added.sList.resize(nBefore);
    return added;
}

std::string LeftOutText(const AddedFiles &added)
{
    std::string text;
    if (added.nBroken)
        text =
            FilesWere(added.nBroken) + " left out of the list: a name with a line break in it would become two lines.";
    if (added.nNoRoom)
        text += (text.empty() ? "" : " ") + FilesWere(added.nNoRoom) + " left out of the list: it is full.";
    return text;
}

std::vector<FieldWrite> AddedListWrites(const EditPlace &place, const ControlRecord *pctl, std::u16string sList)
{
    std::vector<FieldWrite> writes;
    writes.push_back(WriteText(place, EditField::FileList, std::move(sList)));
    if (!ControlSupportsFluidSources(pctl))
        writes.push_back(WriteNumber(ModulePlace(place, place.iModule), EditField::ResetPending, 1));
    return writes;
}
