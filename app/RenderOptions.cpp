// RenderOptions.cpp -- the command line of the headless renderer
#include "app/RenderOptions.h"

#include "app/CommandLine.h"
#include "output/pictures/PictureFiles.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "state/PresetState.h"

#include <algorithm>
#include <cmath>
#include <unistd.h>

namespace {

constexpr i64 FRAMES_MAX = 100000000;
constexpr double SECONDS_MAX = 100000; // with the highest rate FRAMES_MAX frames

RenderOptions *Options(void *pv)
{
    return static_cast<RenderOptions *>(pv);
}

bool SetFrames(void *pv, const std::string &s)
{
    Options(pv)->bFramesGiven = 1;
    Options(pv)->fSeconds = 0;
    return ParseNumber(s, 1, FRAMES_MAX, &Options(pv)->nFrames);
}

bool SetSeconds(void *pv, const std::string &s)
{
    Options(pv)->bFramesGiven = 1;
    return ParseNumber(s, 0.001, SECONDS_MAX, &Options(pv)->fSeconds);
}

bool SetSize(void *pv, const std::string &s)
{
    const size_t iTimes = s.find('x');
    return iTimes != std::string::npos &&
           ParseNumber(s.substr(0, iTimes), BUFFER_SIDE_MIN, BUFFER_SIDE_MAX, &Options(pv)->nWidth) &&
           ParseNumber(s.substr(iTimes + 1), BUFFER_SIDE_MIN, BUFFER_SIDE_MAX, &Options(pv)->nHeight);
}

bool SetFps(void *pv, const std::string &s)
{
    return ParseNumber(s, 0.001, 1000.0, &Options(pv)->fFps);
}

bool SetWarmup(void *pv, const std::string &s)
{
    return ParseNumber(s, 0, FRAMES_MAX, &Options(pv)->nWarmup);
}

bool SetSeed(void *pv, const std::string &s)
{
    return ParseNumber(s, &Options(pv)->qwSeed);
}

bool SetMix(void *pv, const std::string &s)
{
    Options(pv)->bOnePass = s == "onepass";
    return s == "rule" || s == "onepass";
}

bool SetThreads(void *pv, const std::string &s)
{
    Options(pv)->bThreads = s == "1";
    return s == "0" || s == "1";
}

bool SetData(void *pv, const std::string &s)
{
    Options(pv)->start.data = FromUtf8(s);
    return FolderExists(FromUtf8(s));
}

bool SetModules(void *pv, const std::string &s)
{
    Options(pv)->start.modules = FromUtf8(s);
    return FolderExists(FromUtf8(s));
}

template <u32 RenderOptions::*pSwitch> bool SwitchOn(void *pv, const std::string &)
{
    Options(pv)->*pSwitch = 1;
    return true;
}

template <std::string RenderOptions::*pText> bool SetText(void *pv, const std::string &s)
{
    Options(pv)->*pText = s;
    return true;
}

constexpr OptionRow asOption[] = {
    {"--frames", "N", "frames to write, numbered from 1 (default 300, or the length of the sound file)", SetFrames},
    {"--seconds", "S", "the same as so many seconds", SetSeconds},
    {"--size", "WxH", "size of the picture, 128 to 8192 each way (default 1280x720)", SetSize},
    {"--fps", "F", "frames a second of the fixed clock, up to 1000 (default 60)", SetFps},
    {"--out", "PATTERN",
     "file name with one number field, such as out/f-%04d.png; the extension picks the format: "
     "png, jpg, tif, gif, bmp or ppm; - writes raw BGRA frames, top row first, to standard output "
     "(default Untitled-%04d.png)",
     SetText<&RenderOptions::out>},
    {"--warmup", "N", "frames run before the first one written (default 0)", SetWarmup},
    {"--seed", "S", "fixes every random number of the run (default 1)", SetSeed},
    {"--sound", "FILE",
     "levels from this sound file (WAV, FLAC, OGG, MP3), which begins with the first frame written; "
     "its silence is silence (default: a simulated level)",
     SetText<&RenderOptions::sound>},
    {"--mix", "PATH", "rule: rule by rule; onepass: all rules at once (default rule)", SetMix},
    {"--threads", "N", "1: each plane on a thread of its own; 0: one after the other (default 1)", SetThreads},
    {"--data", "DIR", "an existing data folder", SetData},
    {"--modules", "DIR", "an existing folder of module libraries", SetModules},
    {"--save", "FILE", "save the loaded preset under this name and end, without frames", SetText<&RenderOptions::save>},
    {"--list", "DIR",
     "print the presets of a folder and end: name, date (UTC), size, sound sync, favorites, compatible, modules; "
     "from the folder's cache or by reading them; writes nothing",
     SetText<&RenderOptions::list>},
    {"--json", nullptr, "with --list: as JSON; null for what could not be read", SwitchOn<&RenderOptions::bJson>},
    {"--stats", nullptr, "at the end, print the times of each stage: median and 99th percentile",
     SwitchOn<&RenderOptions::bStats>},
    {"--help", nullptr, "this text", SwitchOn<&RenderOptions::bHelp>},
    {"--version", nullptr, "the version", SwitchOn<&RenderOptions::bVersion>},
};

// What is no UTF-8 would become another name on its way through the program.
bool CheckName(const char *pszOption, const std::string &sName, std::string *psError)
{
    if (ToUtf8(FromUtf8(sName)) == sName)
        return true;
    *psError = pszOption + (" " + sName) + ": the name is not UTF-8";
    return false;
}

bool CheckOut(RenderOptions *pro, std::string *psError)
{
    if (pro->out == "-" && isatty(STDOUT_FILENO) && pro->save.empty() && pro->list.empty()) {
        *psError = "--out -: raw frames do not go to a terminal; send them to a file or to another program";
        return false;
    }
    if (pro->out == "-")
        return true;
    const std::u16string out = FromUtf8(pro->out);
    if (const char *pszWrong = ParseNumberPattern(out, &pro->pattern)) {
        *psError = "--out " + pro->out + ": " + pszWrong;
        return false;
    }
    const bool bMany = pro->nFrames > 1 || (!pro->sound.empty() && !pro->bFramesGiven);
    if (!pro->pattern.bHasNumber && bMany) {
        *psError = "--out " + pro->out + ": a number field such as %04d is needed for more than one frame";
        return false;
    }
    if (!CanWritePicture(PictureFormatOf(out.c_str()))) {
        *psError = "--out " + pro->out +
                   ": no picture format that can be written; name it .png, .jpg, .tif, .gif, .bmp or .ppm";
        return false;
    }
    return true;
}

bool CheckOperands(RenderOptions *pro, const std::vector<std::string> &asOperand, std::string *psError)
{
    const size_t nWanted = pro->list.empty() ? 1 : 0;
    if (asOperand.size() == nWanted) {
        if (nWanted)
            pro->preset = asOperand[0];
        return true;
    }
    *psError = asOperand.size() > nWanted ? "too many arguments: " + asOperand[nWanted]
                                          : "which preset? Name a preset file, or default for the built-in one";
    return false;
}

} // namespace

bool ReadRenderOptions(int argc, char **argv, RenderOptions *pro, std::string *psError)
{
    ASSERT_MAIN_THREAD();
    std::vector<std::string> asOperand;
    if (!ParseCommandLine(asOption, argc, argv, pro, &asOperand, psError))
        return false;
    if (pro->bHelp || pro->bVersion)
        return true;
    if (pro->fSeconds > 0)
        pro->nFrames = std::max<i64>(std::llround(pro->fSeconds * pro->fFps), 1);
    return CheckOperands(pro, asOperand, psError) && CheckName("--out", pro->out, psError) &&
           CheckName("--save", pro->save, psError) && CheckOut(pro, psError);
}

std::string RenderHelp()
{
    return "vorticade-render [options] PRESET\n"
           "Renders a preset to picture files, frame by frame, without a window. PRESET is a preset file, by its path "
           "or by\n"
           "its name in the Presets folder of --data, or the word default for the built-in one. The same call gives "
           "the\n"
           "same bytes.\n\n" +
           OptionHelp(asOption) + "\nExit status: 0 all frames were written, 1 they were not, 2 wrong command line.\n";
}
