// Notices.cpp -- what the program has to tell its user in plain words
#include "platform/Notices.h"

#include <cerrno>
#include <cstdio>

namespace {

std::string sNotices;
u32 nNotices = 0;

} // namespace

void (*pfnNoticeAdded)() = nullptr;

void AddNotice(std::string_view text)
{
    const std::string sLine = std::string(text) + "\n";
    if (sNotices.find(sLine) != std::string::npos)
        return;
    std::fprintf(stderr, "%s: %s", program_invocation_short_name, sLine.c_str());
    sNotices += sLine;
    nNotices++;
    if (pfnNoticeAdded)
        pfnNoticeAdded();
}

u32 NoticeCount()
{
    return nNotices;
}

const std::string &NoticeText()
{
    return sNotices;
}
