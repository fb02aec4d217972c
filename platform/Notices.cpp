// Notices.cpp -- what the program has to tell its user in plain words
#include "platform/Notices.h"

#include <cerrno>
#include <cstdio>

namespace {

std::string sNotices;

} // namespace

void AddNotice(std::string_view text)
{
    const std::string sLine = std::string(text) + "\n";
    std::fprintf(stderr, "%s: %s", program_invocation_short_name, sLine.c_str());
    if (sNotices.find(sLine) == std::string::npos)
        sNotices += sLine;
}

const std::string &NoticeText()
{
    return sNotices;
}
