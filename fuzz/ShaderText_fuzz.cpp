// ShaderText_fuzz.cpp -- the shader module's reading of hostile files, up to what a driver would get
#include "stock/PMShader/ShaderDialect.h"
#include "stock/PMShader/ShaderFile.h"

#include "platform/Assert.h"
#include "platform/BaseTypes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace {

void CheckInputs(const std::vector<ShaderInput> &inputs)
{
    VD_ASSERT(inputs.size() <= SHADER_INPUTS_MAX);
    for (const ShaderInput &input : inputs) {
        VD_ASSERT(!input.label.empty() && input.label.find(u'.') == std::u16string::npos);
        VD_ASSERT(input.anValue.size() == input.aszChoice.size() && input.anValue.size() <= SHADER_CHOICES_MAX);
        for (int i = 0; i < InputParts(input.eKind); i++)
            VD_ASSERT(input.afMin[i] <= input.afMax[i] && std::isfinite(input.afDefault[i]));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8 *pData, size_t cb)
{
    static const int nFile = memfd_create("shader", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(nFile);
    VD_ASSERT(ftruncate(nFile, 0) == 0 && pwrite(nFile, pData, cb, 0) == static_cast<ssize_t>(cb));
    ShaderText text;
    ShaderHeader header = {};
    std::string error;
    const bool bRead = ReadShaderText(path, &text, &error);
    VD_ASSERT(bRead || !error.empty());
    VD_ASSERT(text.text.size() <= SHADER_TEXT_BYTES_MAX + SHADER_FILE_BYTES_MAX);
    ReadShaderHeader(text.header, 1, &header, &error);
    CheckInputs(header.aInput);
    VD_ASSERT(header.aPass.size() <= SHADER_PASSES_MAX && header.aTarget.size() <= SHADER_TARGETS_MAX);
    ShaderSources sources;
    if (bRead && TranslateShader(text.text, header.aInput, {450, SHADER_LOOP_STEPS}, &sources, &error))
        VD_ASSERT(std::count(sources.fragment.begin(), sources.fragment.end(), '\n') >=
                  std::count(text.text.begin(), text.text.end(), '\n') / 2);
    return 0;
}
