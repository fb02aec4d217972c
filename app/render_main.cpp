// render_main.cpp -- vorticade-render: the engine without any window
#include "app/RenderOptions.h"
#include "app/RenderRun.h"
#include "platform/MainThread.h"
#include "platform/Signals.h"

#include <cstdio>

int main(int argc, char **argv)
{
    ClaimMainThread();
    RenderOptions ro;
    std::string sError;
    if (!ReadRenderOptions(argc, argv, &ro, &sError)) {
        std::fprintf(stderr, "vorticade-render: %s\n", sError.c_str());
        return 2;
    }
    if (ro.bHelp || ro.bVersion) {
        std::fputs(ro.bHelp ? RenderHelp().c_str() : "vorticade-render " VD_VERSION "\n", stdout);
        return 0;
    }
    IgnoreWriteSignals(); // errors to report, not reasons to die
    NoteTerminationSignals();
    return RunRender(ro);
}
