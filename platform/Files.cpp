// Files.cpp -- paths, folders, environment variables
#include "platform/Files.h"

#include "platform/Text.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

bool IsSeparator(char16_t ch)
{
    return ch == u'/' || ch == u'\\';
}

bool StatPath(const std::string &sPath, struct stat *pst)
{
    return !sPath.empty() && stat(sPath.c_str(), pst) == 0;
}

// The name in sFolder that equals sName but for case; empty if there is none.
std::string FindNameByCase(const std::string &sFolder, const std::string &sName)
{
    const std::u16string wanted = FromUtf8(sName);
    std::error_code ec;
    std::string sFound;
    for (fs::directory_iterator it(sFolder.empty() ? "." : sFolder, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string s = it->path().filename().string();
        if (EqualNoCase(FromUtf8(s), wanted) && (sFound.empty() || s < sFound))
            sFound = s;
    }
    return sFound;
}

bool Exists(const std::string &sPath)
{
    struct stat st;
    return StatPath(sPath, &st);
}

// Each part that misses by case alone gets the case that it has on disk; what is not there at all stays as it is.
std::string WithCaseOnDisk(const std::string &sPath)
{
    if (sPath.empty() || sPath == "/" || sPath.size() >= PATH_MAX || Exists(sPath))
        return sPath;
    if (sPath.back() == '/')
        return WithCaseOnDisk(sPath.substr(0, sPath.size() - 1)) + "/";
    const size_t iName = sPath.rfind('/') + 1; // 0 without a folder
    const std::string sFolder = WithCaseOnDisk(sPath.substr(0, iName));
    const std::string sName = sPath.substr(iName);
    const std::string sFound = FindNameByCase(sFolder, sName);
    return sFolder + (sFound.empty() ? sName : sFound);
}

bool MatchesPattern(std::u16string_view name, std::u16string_view pattern)
{
    if (pattern == u"*.*" || pattern == u"*")
        return true;
    if (!pattern.starts_with(u'*'))
        return EqualNoCase(name, pattern);
    const std::u16string_view tail = pattern.substr(1);
    return name.size() >= tail.size() && EqualNoCase(name.substr(name.size() - tail.size()), tail);
}

} // namespace

std::string NativePath(std::u16string_view path)
{
    std::string s = ToUtf8(path);
    std::replace(s.begin(), s.end(), '\\', '/');
    return WithCaseOnDisk(s);
}

std::string NativePathOfNewFile(std::u16string_view path)
{
    const std::u16string_view name = NameAndExtension(path);
    return NativePath(path.substr(0, path.size() - name.size())) + ToUtf8(name);
}

bool FileExists(std::u16string_view path)
{
    struct stat st;
    return StatPath(NativePath(path), &st) && !S_ISDIR(st.st_mode);
}

bool FolderExists(std::u16string_view path)
{
    struct stat st;
    return StatPath(NativePath(path), &st) && S_ISDIR(st.st_mode);
}

u32 RenameFile(std::u16string_view from, std::u16string_view to)
{
    return std::rename(NativePath(from).c_str(), NativePath(to).c_str()) == 0;
}

FILE *OpenFile(std::u16string_view path, const char *pszMode)
{
    return std::fopen(NativePath(path).c_str(), pszMode);
}

std::vector<std::u16string> ListFiles(std::u16string_view pattern)
{
    const std::u16string_view name = NameAndExtension(pattern);
    const std::string sFolder = NativePath(WithoutTrailingSeparators(pattern.substr(0, pattern.size() - name.size())));
    std::vector<std::string> asName;
    std::error_code ec;
    for (fs::directory_iterator it(sFolder.empty() ? "." : sFolder, ec), end; !ec && it != end; it.increment(ec)) {
        std::error_code ecType;
        const std::string s = it->path().filename().string();
        // A name with a backslash could not be opened again: it would be taken for a folder and a name.
        if (MatchesPattern(FromUtf8(s), name) && s.find('\\') == s.npos && it->is_regular_file(ecType))
            asName.push_back(s);
    }
    std::sort(asName.begin(), asName.end());
    std::vector<std::u16string> paths;
    for (const std::string &s : asName)
        paths.push_back(JoinPath(FromUtf8(sFolder), FromUtf8(s)));
    return paths;
}

std::u16string_view NameAndExtension(std::u16string_view path)
{
    size_t i = path.size();
    while (i > 0 && !IsSeparator(path[i - 1]))
        i--;
    return path.substr(i);
}

std::u16string_view NameWithoutExtension(std::u16string_view path)
{
    const std::u16string_view name = NameAndExtension(path);
    const size_t iDot = name.rfind(u'.');
    return iDot == std::u16string_view::npos ? name : name.substr(0, iDot);
}

std::u16string JoinPath(std::u16string_view folder, std::u16string_view name)
{
    std::u16string s = WithoutTrailingSeparators(folder);
    if (!s.empty() && !IsSeparator(s.back()))
        s += u'/';
    return s.append(name);
}

std::u16string AbsolutePath(std::u16string_view path)
{
    std::error_code ec;
    const fs::path absolute = fs::absolute(NativePath(path), ec);
    return ec ? std::u16string(path) : FromUtf8(absolute.lexically_normal().string());
}

std::u16string WithoutTrailingSeparators(std::u16string_view path)
{
    while (path.size() > 1 && IsSeparator(path.back()))
        path.remove_suffix(1);
    return std::u16string(path);
}

std::u16string ProgramPath()
{
    std::error_code ec;
    const fs::path path = fs::read_symlink("/proc/self/exe", ec);
    return ec ? std::u16string() : FromUtf8(path.string());
}

std::u16string ProgramFilesFolder()
{
    return u"/opt";
}

std::u16string RoamingDataFolder()
{
    const char *pszData = std::getenv("XDG_DATA_HOME");
    if (pszData && pszData[0] == '/')
        return FromUtf8(pszData);
    const char *pszHome = std::getenv("HOME");
    const passwd *ppw = pszHome && *pszHome ? nullptr : getpwuid(getuid());
    return FromUtf8(std::string(ppw ? ppw->pw_dir : pszHome ? pszHome : "") + "/.local/share");
}

void SetVariable(const char *pszName, std::u16string_view value)
{
    setenv(pszName, ToUtf8(value).c_str(), 1);
}

void SetVariableIfUnset(const char *pszName, std::u16string_view value)
{
    setenv(pszName, ToUtf8(value).c_str(), 0);
}

std::u16string ExpandVariables(std::u16string_view text)
{
    std::u16string s;
    while (!text.empty()) {
        const size_t iFirst = text.find(u'%');
        const size_t iSecond = iFirst == text.npos ? text.npos : text.find(u'%', iFirst + 1);
        if (iSecond == text.npos)
            break;
        const char *pszValue = std::getenv(ToUtf8(text.substr(iFirst + 1, iSecond - iFirst - 1)).c_str());
        s += text.substr(0, iFirst);
        // An unknown name keeps its first percent sign; the second may begin another name.
        s += pszValue ? FromUtf8(pszValue) : std::u16string(text.substr(iFirst, iSecond - iFirst));
        text.remove_prefix(pszValue ? iSecond + 1 : iSecond);
    }
    return s + std::u16string(text);
}
