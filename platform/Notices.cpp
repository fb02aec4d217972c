// Notices.cpp -- what the program has to tell its user in plain words
#include "platform/Notices.h"

#include "platform/MainThread.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

namespace {

struct Notice {
    std::string sText;
    u32 nTimes = 0;
    bool bShown = false; // not dismissed since it came last
};

std::vector<Notice> asNotice; // the one that came last stands last
std::string sShown;

Notice *TakeToEnd(std::string_view text)
{
    const auto it = std::find_if(asNotice.begin(), asNotice.end(), [&](const Notice &n) { return n.sText == text; });
    if (it == asNotice.end())
        asNotice.push_back({std::string(text)});
    else
        std::rotate(it, it + 1, asNotice.end());
    return &asNotice.back();
}

std::string LineOf(const Notice &notice)
{
    const std::string sTimes = notice.nTimes > 1 ? " (" + std::to_string(notice.nTimes) + " times)" : "";
    return notice.sText + sTimes + "\n";
}

void ShowNotices()
{
    sShown.clear();
    for (const Notice &notice : asNotice)
        if (notice.bShown)
            sShown += LineOf(notice);
    NoticeListeners.Tell();
}

} // namespace

Listeners<void()> NoticeListeners;

void AddNotice(std::string_view text)
{
    ASSERT_MAIN_THREAD();
    Notice *pNotice = TakeToEnd(text);
    pNotice->nTimes++;
    pNotice->bShown = true;
    std::fprintf(stderr, "%s: %s", program_invocation_short_name, LineOf(*pNotice).c_str());
    ShowNotices();
}

void DismissNotices()
{
    ASSERT_MAIN_THREAD();
    if (sShown.empty())
        return;
    for (Notice &notice : asNotice)
        notice.bShown = false;
    ShowNotices();
}

u32 NoticeCount()
{
    return static_cast<u32>(std::count_if(asNotice.begin(), asNotice.end(), [](const Notice &n) { return n.bShown; }));
}

const std::string &NoticeText()
{
    return sShown;
}
