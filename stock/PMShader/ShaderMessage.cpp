// ShaderMessage.cpp -- faults of a shader as a text for the message overlay
#include "ShaderMessage.h"

#include "ShaderFile.h"

#include <algorithm>

namespace {

#define FAULT_LINES_MAX 8
#define FAULT_CHARS_MAX 200

// The host's three colours: behind the text, of the text, of what stands out.
constexpr const char16_t *MESSAGE_START = u"{\\rtf1{\\colortbl;\\red%d\\green%d\\blue%d;\\red%d\\green%d\\blue%d;"
                                          u"\\red%d\\green%d\\blue%d;}\\cf3\\b ";

void AppendNumber(std::u16string *pText, int32_t n)
{
    for (const char ch : std::to_string(n))
        *pText += (char16_t)ch;
}

std::u16string Escape(const std::string &text)
{
    std::u16string escaped;
    for (const char16_t ch : WideText(text).substr(0, FAULT_CHARS_MAX)) {
        if (ch == u'\\' || ch == u'{' || ch == u'}') {
            escaped.append({u'\\', ch});
        } else if (ch == u'%') {
            escaped += u"%%";
        } else if (ch < u' ' || ch == 127) {
            escaped += u' ';
        } else if (ch > 127) {
            escaped += u"\\u";
            AppendNumber(&escaped, (int16_t)ch);
            escaped += u'?';
        } else {
            escaped += ch;
        }
    }
    return escaped;
}

} // namespace

std::u16string FaultMessage(const std::string &heading, const std::string &faults)
{
    std::u16string message = MESSAGE_START + Escape(heading) + u"\\b0\\cf2 ";
    size_t i = 0;
    for (int32_t nLine = 0; i < faults.size() && nLine < FAULT_LINES_MAX; nLine++) {
        const size_t iEnd = std::min(faults.find('\n', i), faults.size());
        const std::u16string line = u"\\par " + Escape(faults.substr(i, iEnd - i));
        if (message.size() + line.size() + 16 > MESSAGE_CHARS_MAX)
            break;
        message += line;
        i = iEnd + 1;
    }
    if (i < faults.size())
        message += u"\\par ...";
    return message + u"}";
}
