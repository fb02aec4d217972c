// PictureList.cpp -- looks into the Images folder, words the faults
#include "PictureList.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>

#define STOCK_PICTURES_MAX 1000

static std::vector<std::string> ListPictures(const char *pszDataFolder)
{
    std::vector<std::string> paths;
    std::error_code error;
    auto entry = std::filesystem::directory_iterator(std::filesystem::path(pszDataFolder) / "Images", error);
    for (; !error && entry != std::filesystem::directory_iterator() && paths.size() < STOCK_PICTURES_MAX;
         entry.increment(error)) {
        std::string ending = entry->path().extension().string();
        std::transform(ending.begin(), ending.end(), ending.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? (char)(c + 32) : c; });
        for (const char *pszKnown : {".png", ".jpg", ".jpeg", ".gif", ".bmp"})
            if (ending == pszKnown)
                paths.push_back(entry->path().string());
    }
    std::sort(paths.begin(), paths.end()); // folders come in any order
    return paths;
}

std::string StockPicture(const std::string &last, uint32_t dwRandom)
{
    const char *pszDataFolder = getenv("DAT_BASEFOLDER");
    if (!pszDataFolder)
        return {};
    std::vector<std::string> paths = ListPictures(pszDataFolder);
    if (paths.size() > 1)
        paths.erase(std::remove(paths.begin(), paths.end(), last), paths.end());
    return paths.empty() ? std::string() : paths[dwRandom % paths.size()];
}

void ShowPictureFault(ShowModuleMessageFn pfnShowMessage, const std::string &path, PictureFault eFault)
{
    static constexpr const char *apszFault[] = {"",
                                                "there is no such file, or it may not be read",
                                                "it is no PNG, JPEG, GIF or BMP file",
                                                "it is too large",
                                                "it is damaged",
                                                "there is not enough memory"};
    if (!eFault) {
        if (pfnShowMessage)
            pfnShowMessage(u"");
        return;
    }
    const std::string line = "Cannot show " + NameOfPath(path) + ": " + apszFault[eFault];
    std::u16string message;
    for (const char c : line.substr(0, 1000)) // nothing in a name is taken for markup or for a number's place
        message +=
            c == '%' ? u"%%"
                     : std::u16string(1, c < ' ' || c > '~' || c == '\\' || c == '{' || c == '}' ? u'_' : (char16_t)c);
    if (!pfnShowMessage || !pfnShowMessage(message.c_str()))
        fprintf(stderr, "%s\n", line.c_str());
}
