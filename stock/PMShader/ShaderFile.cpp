// ShaderFile.cpp -- shader files as one text: comments blanked, include files put in, the header comment taken out
#include "ShaderFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace {

struct Reader {
    ShaderText *pText;
    std::string *psError;
    std::string folder; // of include files, resolved; empty: there is none
};

FileStamp MakeStamp(const struct stat &st)
{
    return {st.st_mtim.tv_sec, st.st_mtim.tv_nsec, st.st_size, st.st_ino};
}

bool ReadAll(int nFile, std::string *pText, size_t cb)
{
    pText->resize(cb);
    size_t cbRead = 0;
    while (cbRead < cb) {
        const ssize_t n = read(nFile, pText->data() + cbRead, cb - cbRead);
        if (n < 0)
            return false;
        if (n == 0)
            break;
        cbRead += (size_t)n;
    }
    pText->resize(cbRead);
    return true;
}

// Only regular files: opening a pipe by this name must not hang.
const char *WhyNotRead(const std::string &path, std::string *pText, FileStamp *pStamp)
{
    const int nFile = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat st = {};
    const char *pszWhy = nullptr;
    if (nFile < 0 || fstat(nFile, &st) != 0 || !S_ISREG(st.st_mode))
        pszWhy = "the file cannot be opened";
    else if (st.st_size > SHADER_FILE_BYTES_MAX)
        pszWhy = "the file is larger than a mebibyte";
    else if (!ReadAll(nFile, pText, (size_t)st.st_size))
        pszWhy = "the file cannot be read";
    *pStamp = MakeStamp(st);
    if (nFile >= 0)
        close(nFile);
    return pszWhy;
}

// Line ends become "\n"; the byte order mark and zeros go.
void CleanText(std::string *pText)
{
    if (pText->starts_with("\xEF\xBB\xBF"))
        pText->erase(0, 3);
    size_t iTo = 0;
    for (size_t i = 0; i < pText->size(); i++) {
        const char ch = (*pText)[i];
        if (ch == '\r' && i + 1 < pText->size() && (*pText)[i + 1] == '\n')
            continue;
        (*pText)[iTo++] = ch == '\r' ? '\n' : ch == '\0' ? ' ' : ch;
    }
    pText->resize(iTo);
}

size_t EndOfLineComment(const std::string &text, size_t i)
{
    while (i < text.size() && text[i] != '\n')
        i += text[i] == '\\' && i + 1 < text.size() ? 2u : 1u; // a backslash carries it on to the next line
    return std::min(i, text.size());
}

// Comments become spaces, so that lines and columns stay. False at one that does not end.
bool BlankComments(std::string *pText)
{
    for (size_t i = 0; i + 1 < pText->size(); i++) {
        size_t iEnd = i;
        if (pText->compare(i, 2, "//") == 0) {
            iEnd = EndOfLineComment(*pText, i);
        } else if (pText->compare(i, 2, "/*") == 0) {
            iEnd = pText->find("*/", i + 2);
            if (iEnd == std::string::npos)
                return false;
            iEnd += 2;
        }
        for (; i < iEnd; i++)
            if ((*pText)[i] != '\n')
                (*pText)[i] = ' ';
    }
    return true;
}

// The header comment is the first thing in the file but for other comments and directives, and begins with a brace.
void FindHeader(const std::string &text, ShaderText *pText)
{
    size_t i = 0;
    for (;;) {
        i = text.find_first_not_of(" \t\n", i);
        if (i == std::string::npos)
            return;
        if (text[i] == '#' || text.compare(i, 2, "//") == 0) {
            i = EndOfLineComment(text, i);
            continue;
        }
        const size_t iEnd = text.compare(i, 2, "/*") == 0 ? text.find("*/", i + 2) : std::string::npos;
        if (iEnd == std::string::npos)
            return;
        const size_t iBrace = text.find_first_not_of(" \t\n*", i + 2);
        if (iBrace < iEnd && text[iBrace] == '{') {
            pText->header = text.substr(iBrace, iEnd - iBrace);
            pText->nHeaderLine = 1 + (int32_t)std::count(text.begin(), text.begin() + (int64_t)iBrace, '\n');
            return;
        }
        i = iEnd + 2;
    }
}

// ---- Include files

// The name in an include line; empty if the line is none. *pbBad: one whose name cannot be made out.
std::string IncludedName(std::string_view line, bool *pbBad)
{
    *pbBad = false;
    const auto SkipBlanks = [&] { line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size())); };
    SkipBlanks();
    if (!line.starts_with('#'))
        return {};
    line.remove_prefix(1);
    SkipBlanks();
    if (!line.starts_with("include"))
        return {};
    line.remove_prefix(7);
    SkipBlanks();
    const char chEnd = line.starts_with('"') ? '"' : line.starts_with('<') ? '>' : '\0';
    const size_t iEnd = chEnd ? line.find(chEnd, 1) : line.npos;
    *pbBad = iEnd == line.npos || iEnd < 2;
    return *pbBad ? std::string() : std::string(line.substr(1, iEnd - 1));
}

bool StaysInFolder(const std::string &folder, const std::string &path)
{
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

// The full path of an include file, links followed; empty if there is none inside the folder.
std::string FindIncluded(const std::string &folder, std::string name)
{
    std::replace(name.begin(), name.end(), '\\', '/');
    if (folder.empty() || name.starts_with('/'))
        return {};
    char *pszReal = realpath((folder + "/" + name).c_str(), nullptr);
    const std::string path = pszReal ? pszReal : "";
    free(pszReal);
    return StaysInFolder(folder, path) ? path : std::string();
}

bool Fail(const Reader &reader, size_t iPart, int32_t nLine, const std::string &why)
{
    *reader.psError = reader.pText->aPart[iPart].name + (nLine ? ":" + std::to_string(nLine) : "") + ": " + why;
    return false;
}

bool AppendFile(const Reader &reader, const std::string &path, const std::string &name, int32_t nDepth);

void AppendPlace(ShaderText *pText, int32_t nLine, size_t iPart)
{
    pText->text += "#line " + std::to_string(iPart * SHADER_LINES_MAX + (size_t)nLine) + "\n";
}

// A file is put in once, at its first mention: files that include each other end there.
bool AppendIncluded(const Reader &reader, size_t iPart, int32_t nLine, const std::string &name, int32_t nDepth)
{
    const std::string path = FindIncluded(reader.folder, name);
    if (path.empty())
        return Fail(reader, iPart, nLine, "there is no file \"" + name + "\" in the include folder");
    const auto &aPart = reader.pText->aPart;
    if (std::any_of(aPart.begin(), aPart.end(), [&](const ShaderPart &part) { return part.path == path; })) {
        reader.pText->text += '\n';
        return true;
    }
    if (nDepth >= SHADER_INCLUDE_DEPTH_MAX || aPart.size() >= SHADER_FILES_MAX)
        return Fail(reader, iPart, nLine, "too many include files");
    if (!AppendFile(reader, path, name, nDepth + 1))
        return false;
    AppendPlace(reader.pText, nLine + 1, iPart);
    return true;
}

bool AppendLines(const Reader &reader, size_t iPart, const std::string &text, int32_t nDepth)
{
    AppendPlace(reader.pText, 1, iPart);
    int32_t nLine = 1;
    for (size_t i = 0; i < text.size(); nLine++) {
        const size_t iEnd = std::min(text.find('\n', i), text.size());
        const std::string_view line(text.data() + i, iEnd - i);
        bool bBad = false;
        const std::string name = IncludedName(line, &bBad);
        if (bBad)
            return Fail(reader, iPart, nLine, "#include needs a file name between quotes");
        if (name.empty())
            reader.pText->text.append(line).append(1, '\n');
        else if (!AppendIncluded(reader, iPart, nLine, name, nDepth))
            return false;
        if (reader.pText->text.size() > SHADER_TEXT_BYTES_MAX || nLine >= SHADER_LINES_MAX)
            return Fail(reader, iPart, nLine, "the shader is larger than it may be");
        i = iEnd + 1;
    }
    return true;
}

bool AppendFile(const Reader &reader, const std::string &path, const std::string &name, int32_t nDepth)
{
    const size_t iPart = reader.pText->aPart.size();
    reader.pText->aPart.push_back({path, name, {}});
    std::string text;
    if (const char *pszWhy = WhyNotRead(path, &text, &reader.pText->aPart.back().stamp))
        return Fail(reader, iPart, 0, pszWhy);
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
        return Fail(reader, iPart, 0, "the text is in UTF-16; save it as UTF-8");
    CleanText(&text);
    if (iPart == 0)
        FindHeader(text, reader.pText);
    if (!BlankComments(&text))
        return Fail(reader, iPart, 0, "a comment has no end");
    return AppendLines(reader, iPart, text, nDepth);
}

std::string IncludeFolder(const std::string &path)
{
    const char *pszFolder = getenv("FOLDER_SHADERINCLUDE");
    const std::string beside = path.substr(0, path.find_last_of('/') + 1) + "Include";
    char *pszReal = realpath(pszFolder && *pszFolder ? pszFolder : beside.c_str(), nullptr);
    const std::string folder = pszReal ? pszReal : "";
    free(pszReal);
    return folder;
}

// ---- Text

void AppendCharacter(std::u16string *pText, uint32_t dwCode)
{
    if (dwCode < 0x10000) {
        *pText += (char16_t)dwCode;
        return;
    }
    *pText += (char16_t)(0xD800 + ((dwCode - 0x10000) >> 10));
    *pText += (char16_t)(0xDC00 + ((dwCode - 0x10000) & 0x3FF));
}

void AppendCharacter(std::string *pText, uint32_t dwCode)
{
    if (dwCode < 0x80) {
        *pText += (char)dwCode;
        return;
    }
    const int32_t nMore = dwCode < 0x800 ? 1 : dwCode < 0x10000 ? 2 : 3;
    static const uint32_t adwLead[] = {0, 0xC0, 0xE0, 0xF0};
    *pText += (char)(adwLead[nMore] | dwCode >> (6 * nMore));
    for (int32_t i = nMore - 1; i >= 0; i--)
        *pText += (char)(0x80 | ((dwCode >> (6 * i)) & 0x3F));
}

// Takes one character from the front of the text, which is not empty.
uint32_t TakeCharacter(std::string_view *pText)
{
    const uint8_t b = (uint8_t)(*pText)[0];
    const bool bLead = b < 0x80 || (b >= 0xC2 && b < 0xF5);
    const size_t nMore = b < 0xC0 ? 0 : b < 0xE0 ? 1 : b < 0xF0 ? 2 : 3;
    uint32_t dwCode = nMore == 0 ? b : b & (0x3Fu >> nMore);
    bool bGood = bLead && nMore < pText->size();
    for (size_t i = 1; bGood && i <= nMore; i++) {
        bGood = ((uint8_t)(*pText)[i] & 0xC0) == 0x80;
        dwCode = dwCode << 6 | ((uint8_t)(*pText)[i] & 0x3Fu);
    }
    static const uint32_t adwLowest[] = {0, 0x80, 0x800, 0x10000};
    bGood = bGood && dwCode >= adwLowest[nMore] && dwCode < 0x110000 && (dwCode < 0xD800 || dwCode > 0xDFFF);
    pText->remove_prefix(bGood ? nMore + 1 : 1);
    return bGood ? dwCode : 0xFFFD;
}

} // namespace

bool ReadShaderText(const std::string &path, ShaderText *pText, std::string *psError)
{
    *pText = {};
    const Reader reader = {pText, psError, IncludeFolder(path)};
    return AppendFile(reader, path, NameOfPath(path), 0);
}

FileStamp StampOfFile(const std::string &path)
{
    struct stat st = {};
    return stat(path.c_str(), &st) == 0 ? MakeStamp(st) : FileStamp{};
}

std::string NameOfPath(const std::string &path)
{
    return path.substr(path.find_last_of('/') + 1);
}

std::string NarrowText(const char16_t *pszText)
{
    std::string text;
    for (; pszText && *pszText; pszText++) {
        uint32_t dwCode = *pszText;
        if (dwCode >= 0xD800 && dwCode < 0xDC00 && pszText[1] >= 0xDC00 && pszText[1] < 0xE000)
            dwCode = 0x10000 + ((dwCode - 0xD800) << 10) + (*++pszText - 0xDC00u);
        AppendCharacter(&text, dwCode >= 0xD800 && dwCode < 0xE000 ? 0xFFFD : dwCode);
    }
    return text;
}

std::u16string WideText(std::string_view text)
{
    std::u16string wide;
    while (!text.empty())
        AppendCharacter(&wide, TakeCharacter(&text));
    return wide;
}
