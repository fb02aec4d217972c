// FileFilter.cpp -- which files a file chooser shows, and the extension that it adds
#include "toolkit/FileFilter.h"

#include "platform/Files.h"

namespace {

// Everything from the name's last dot on; empty without one.
std::u16string_view ExtensionOf(std::u16string_view path)
{
    const std::u16string_view name = NameAndExtension(path);
    const size_t i = name.rfind(u'.');
    return i == name.npos ? std::u16string_view{} : name.substr(i);
}

std::vector<FileFilter> SplitDescription(std::u16string_view text)
{
    std::vector<FileFilter> filters;
    while (!text.empty()) {
        const size_t iTab = text.find(u'\t');
        const std::u16string_view description = text.substr(0, iTab);
        text.remove_prefix(iTab == text.npos ? text.size() : iTab + 1);
        const size_t iEnd = text.find(u'\t');
        const std::u16string_view pattern = text.substr(0, iEnd);
        text.remove_prefix(iEnd == text.npos ? text.size() : iEnd + 1);
        if (!description.empty() && !pattern.empty())
            filters.push_back({std::u16string(description), std::u16string(pattern)});
    }
    return filters;
}

} // namespace

std::vector<FileFilter> FileFilters(std::u16string_view pattern, std::u16string_view name)
{
    if (pattern.find(u'\t') != pattern.npos)
        return SplitDescription(pattern);
    const std::u16string_view extension = ExtensionOf(name);
    std::u16string sPattern(pattern);
    if (sPattern.empty() && extension.size() > 1)
        sPattern = u"*" + std::u16string(extension);
    if (sPattern.empty())
        return {{u"All Files (*.*)", u"*.*"}};
    return {{sPattern + u" Files", sPattern}};
}

std::u16string DefaultExtension(std::u16string_view pattern)
{
    const size_t i = pattern.rfind(u'.');
    const std::u16string_view extension = i == pattern.npos ? std::u16string_view{} : pattern.substr(i + 1);
    return std::u16string(extension.substr(0, extension.find_first_of(u"*?\t;")));
}
