// Notices.cpp -- what the program has to tell its user in plain words
#include "app/Notices.h"

#include <cstdio>

namespace {

std::string sNotices;

} // namespace

void AddNotice(std::string_view text)
{
    const std::string sLine = std::string(text) + "\n";
    std::fprintf(stderr, "vorticade: %s", sLine.c_str());
    if (sNotices.find(sLine) == std::string::npos)
        sNotices += sLine;
}

const std::string &NoticeText()
{
    return sNotices;
}
