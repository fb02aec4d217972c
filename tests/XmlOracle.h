// XmlOracle.h -- the tag reader written the slow, obvious way: one text search per lookup
#pragma once

#include "platform/Text.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

struct XmlOracle {
    std::u16string sText;
    std::vector<std::pair<size_t, size_t>> ranges; // of the open levels, the document first

    explicit XmlOracle(std::u16string text) : sText(std::move(text))
    {
        size_t i = std::min(sText.find_first_of(u"\r\n"), sText.size());
        while (i < sText.size() && std::u16string_view(u"\t \r\n").find(sText[i]) != std::u16string_view::npos)
            i++;
        ranges.push_back({i, sText.size()});
    }

    size_t Search(const std::u16string &what, size_t iFrom, size_t iTo) const
    {
        const size_t iLast = std::min(iTo, sText.size());
        for (size_t i = sText.find(u'<', iFrom); i < iLast && i + what.size() <= iLast; i = sText.find(u'<', i + 1))
            if (EqualNoCase(std::u16string_view(sText).substr(i, what.size()), what))
                return i;
        return sText.npos;
    }

    std::optional<std::u16string> Value(const std::u16string &tag) const
    {
        const size_t iOpen = Search(u"<" + tag + u">", ranges.back().first, ranges.back().second);
        if (iOpen == sText.npos)
            return std::nullopt;
        const size_t iValue = iOpen + tag.size() + 2;
        return sText.substr(iValue, std::min(sText.find(u'<', iValue), sText.size()) - iValue);
    }

    bool Enter(const std::u16string &tag)
    {
        const auto [iFrom, iTo] = ranges.back();
        const size_t iOpen = Search(u"<" + tag + u">", iFrom, iTo);
        if (iOpen == sText.npos || ranges.size() >= 32)
            return false;
        const size_t iInside = iOpen + tag.size() + 2;
        const size_t iClose = Search(u"</" + tag + u">", iFrom, iTo + 1);
        ranges.push_back({iInside, iClose == sText.npos ? iInside : std::max(iInside, iClose)});
        return true;
    }

    void Leave()
    {
        if (ranges.size() > 1)
            ranges.pop_back();
    }
};
