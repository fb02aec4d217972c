// NumberPattern.cpp -- file names with one number field, which a user types and no formatter ever sees
#include "output/pictures/NumberPattern.h"

#include <algorithm>

namespace {

constexpr u32 NUMBER_WIDTH_MAX = 1000; // a name that long exists nowhere: whoever opens it says so

// Reads flags and width at text[*pi] behind a percent sign.
void ReadField(std::u16string_view text, size_t *pi, NumberPattern *pnp)
{
    for (; *pi < text.size(); ++*pi) {
        switch (text[*pi]) {
        case u'0':
            pnp->bZeros = 1;
            continue;
        case u'-':
            pnp->bLeft = 1;
            continue;
        case u'+':
            pnp->bPlus = 1;
            continue;
        case u' ':
            pnp->bBlank = 1;
            continue;
        case u'#':
            continue;
        default:
            break;
        }
        break;
    }
    for (; *pi < text.size() && text[*pi] >= u'0' && text[*pi] <= u'9'; ++*pi)
        pnp->nWidth = std::min(pnp->nWidth * 10 + (text[*pi] - u'0'), NUMBER_WIDTH_MAX);
}

} // namespace

const char *ParseNumberPattern(std::u16string_view text, NumberPattern *pnp)
{
    *pnp = {};
    std::u16string *pPart = &pnp->before;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] != u'%') {
            pPart->push_back(text[i]);
            continue;
        }
        if (++i < text.size() && text[i] == u'%') {
            pPart->push_back(u'%');
            continue;
        }
        if (pnp->bHasNumber)
            return "only one number field may stand in a file name";
        ReadField(text, &i, pnp);
        if (i >= text.size() || (text[i] != u'd' && text[i] != u'i' && text[i] != u'u'))
            return "a number field must be of the form %d, %i or %u (such as %04d), and a percent sign is written %%";
        pnp->bHasNumber = 1;
        pPart = &pnp->after;
    }
    return nullptr;
}

std::u16string FormatNumberPattern(const NumberPattern &np, u32 dwNumber)
{
    if (!np.bHasNumber)
        return np.before;
    std::u16string digits;
    for (u32 n = dwNumber; n || digits.empty(); n /= 10)
        digits.insert(digits.begin(), static_cast<char16_t>(u'0' + n % 10));
    const std::u16string sign = np.bPlus ? u"+" : np.bBlank ? u" " : u"";
    const size_t cch = digits.size() + sign.size();
    const std::u16string fill(np.nWidth > cch ? np.nWidth - cch : 0, np.bZeros && !np.bLeft ? u'0' : u' ');
    const std::u16string number = np.bLeft    ? sign + digits + fill
                                  : np.bZeros ? sign + fill + digits
                                              : fill + sign + digits;
    return np.before + number + np.after;
}
