// MakePalettes.cpp -- writes palette files from a text of colours; see palettes.txt for the text
//
// Usage: MakePalettes TEXT FOLDER
#include "stock/common/PaletteColor.h"

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

// Place in the loop, 0 to below 1; lightness 0 to 1; hue in turns.
struct Stop {
    float fPlace, fLight, fChroma, fHue;
};

struct Palette {
    std::string sName, sFormat;
    int32_t nColors = 0;
    std::vector<Stop> aStop;
};

bool ReadStop(const std::string &sWord, Palette *pPalette)
{
    float fLight, fStrength, fHue, fPercent = -1;
    const int n = std::sscanf(sWord.c_str(), "%f/%f/%f@%f", &fLight, &fStrength, &fHue, &fPercent);
    if (n < 3 || fLight < 0 || fLight > 100 || fStrength < 0 || fStrength > 100 || fPercent > 99.9f)
        return false;
    const float fChroma = GreatestChroma(fLight / 100, WrapTurns(fHue / 360)) * fStrength / 100;
    pPalette->aStop.push_back({n > 3 ? fPercent / 100 : -1, fLight / 100, fChroma, fHue / 360});
    return true;
}

// The way from stop i to the next one; that from black and to black is short, or half of a picture would be dark.
float WayFrom(const std::vector<Stop> &a, size_t i)
{
    return a[i].fLight <= 0 || a[(i + 1) % a.size()].fLight <= 0 ? 0.55f : 1;
}

// Stops without a place lie between their neighbours; hues go the short way from one to the next.
bool PlaceStops(std::vector<Stop> *paStop)
{
    std::vector<Stop> &a = *paStop;
    a.front().fPlace = 0;
    for (size_t i = 1; i < a.size(); i++) {
        if (a[i].fPlace < 0) {
            size_t iNext = i;
            float fRest = WayFrom(a, i - 1);
            for (; iNext < a.size() && a[iNext].fPlace < 0; iNext++)
                fRest += WayFrom(a, iNext);
            const float fEnd = iNext < a.size() ? a[iNext].fPlace : 1;
            a[i].fPlace = a[i - 1].fPlace + (fEnd - a[i - 1].fPlace) * WayFrom(a, i - 1) / fRest;
        }
        if (a[i].fPlace <= a[i - 1].fPlace)
            return false;
        a[i].fHue = a[i - 1].fHue + HueDifference(a[i - 1].fHue, a[i].fHue);
    }
    return true;
}

// A line: NAME | FORMAT | COLORS | STOPS
bool ReadLine(const std::string &sLine, Palette *pPalette)
{
    std::istringstream line(sLine);
    std::string sColors, sStops, sWord;
    if (!std::getline(line, pPalette->sName, '|') || !std::getline(line, pPalette->sFormat, '|') ||
        !std::getline(line, sColors, '|') || !std::getline(line, sStops))
        return false;
    for (std::string *ps : {&pPalette->sName, &pPalette->sFormat}) {
        ps->erase(ps->find_last_not_of(' ') + 1);
        ps->erase(0, ps->find_first_not_of(' '));
    }
    pPalette->nColors = std::atoi(sColors.c_str());
    std::istringstream stops(sStops);
    while (stops >> sWord)
        if (!ReadStop(sWord, pPalette))
            return false;
    return pPalette->aStop.size() >= 2 && pPalette->nColors >= 1 && pPalette->nColors <= PALETTE_COLORS_MAX &&
           PlaceStops(&pPalette->aStop);
}

// Stop i of the endless loop.
Stop StopOf(const std::vector<Stop> &a, int i)
{
    const int n = (int)a.size(), nRound = (i + n) / n - 1;
    Stop stop = a[(size_t)((i + n) % n)];
    stop.fPlace += (float)nRound;
    const float fLap = HueDifference(a.back().fHue, a.front().fHue) + a.back().fHue - a.front().fHue;
    stop.fHue += (float)nRound * fLap;
    return stop;
}

// Slope at a stop that lets the curve neither overshoot nor wave (Fritsch and Butland 1984). At black it has a corner.
float SlopeAt(float fBefore, float fAfter)
{
    return fBefore * fAfter > 0 ? 2 * fBefore * fAfter / (fBefore + fAfter) : 0;
}

float CurveOf(const Stop (&s)[4], float Stop::*pf, float t)
{
    float afSlope[3];
    for (int i = 0; i < 3; i++)
        afSlope[i] = (s[i + 1].*pf - s[i].*pf) / (s[i + 1].fPlace - s[i].fPlace);
    const float fWidth = s[2].fPlace - s[1].fPlace;
    const float m1 = (s[1].fLight <= 0 ? afSlope[1] : SlopeAt(afSlope[0], afSlope[1])) * fWidth;
    const float m2 = (s[2].fLight <= 0 ? afSlope[1] : SlopeAt(afSlope[1], afSlope[2])) * fWidth;
    const float t2 = t * t, t3 = t2 * t;
    return (2 * t3 - 3 * t2 + 1) * s[1].*pf + (t3 - 2 * t2 + t) * m1 + (3 * t2 - 2 * t3) * s[2].*pf + (t3 - t2) * m2;
}

Lab ColorAt(const std::vector<Stop> &a, float fPlace)
{
    int i = 0;
    while (i + 1 < (int)a.size() && a[(size_t)i + 1].fPlace <= fPlace)
        i++;
    const Stop s[4] = {StopOf(a, i - 1), StopOf(a, i), StopOf(a, i + 1), StopOf(a, i + 2)};
    const float t = (fPlace - s[1].fPlace) / (s[2].fPlace - s[1].fPlace);
    const float fLight = Limit(CurveOf(s, &Stop::fLight, t), 0, 1), fHue = CurveOf(s, &Stop::fHue, t);
    return LabOfHue(fLight, CurveOf(s, &Stop::fChroma, t), WrapTurns(fHue));
}

std::vector<uint32_t> ColorsOf(const Palette &palette)
{
    static CodeTables tables;
    MakeCodeTables(&tables);
    std::vector<uint32_t> adw;
    for (int32_t i = 0; i < palette.nColors; i++)
        adw.push_back(PixelOfLab(&tables, ColorAt(palette.aStop, (float)i / (float)palette.nColors)));
    return adw;
}

void AppendWord(std::string *ps, uint32_t dw)
{
    for (int nShift = 0; nShift < 32; nShift += 8)
        *ps += (char)(dw >> nShift);
}

void AppendColor(std::string *ps, uint32_t dw)
{
    *ps += {(char)(dw >> 16), (char)(dw >> 8), (char)dw};
}

std::string FullFile(const std::vector<uint32_t> &adw)
{
    std::string bytes("\0i\0B", 4);
    AppendWord(&bytes, (uint32_t)adw.size());
    for (uint32_t dw : adw)
        AppendColor(&bytes, dw);
    return bytes;
}

std::string ShortFile(const std::vector<uint32_t> &adw)
{
    std::string bytes("\0B\0B", 4);
    AppendWord(&bytes, (uint32_t)adw.size() * 4);
    for (uint32_t dw : adw) {
        AppendColor(&bytes, dw);
        bytes += '\0';
    }
    return bytes;
}

// Six bits a gun, green, blue, red, behind four bytes that belong to no colour; two bytes are left over.
std::string RawFile(const std::vector<uint32_t> &adw)
{
    std::string bytes(4, '\0');
    for (uint32_t dw : adw)
        bytes += {(char)(dw >> 10 & 63), (char)(dw >> 2 & 63), (char)(dw >> 18 & 63)};
    return bytes + std::string(2, '\0');
}

struct Format {
    const char *pszName;
    int32_t nColors; // 0: any number
    std::string (*pfnFile)(const std::vector<uint32_t> &adw);
};
const Format aFormat[] = {{"full", 0, FullFile}, {"short", 236, ShortFile}, {"raw", 254, RawFile}};

bool WritePalette(const Palette &palette, const std::string &sFolder)
{
    for (const Format &format : aFormat)
        if (palette.sFormat == format.pszName && (!format.nColors || format.nColors == palette.nColors)) {
            std::ofstream file(sFolder + "/" + palette.sName, std::ios::binary);
            file << format.pfnFile(ColorsOf(palette));
            return file.good();
        }
    return false;
}

} // namespace

int main(int nArguments, char **apszArgument)
{
    std::ifstream text(nArguments == 3 ? apszArgument[1] : "");
    std::string sLine;
    int nLine = 0;
    if (!text) {
        std::fprintf(stderr, "Usage: MakePalettes TEXT FOLDER\n");
        return 2;
    }
    while (std::getline(text, sLine)) {
        nLine++;
        if (sLine.empty() || sLine[0] == '#')
            continue;
        Palette palette;
        if (!ReadLine(sLine, &palette) || !WritePalette(palette, apszArgument[2])) {
            std::fprintf(stderr, "%s:%d: cannot make a palette of this\n", apszArgument[1], nLine);
            return 1;
        }
    }
    return 0;
}
