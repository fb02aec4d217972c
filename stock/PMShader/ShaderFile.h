// ShaderFile.h -- shader files as one text: comments blanked, include files put in, the header comment taken out
#ifndef VORTICADE_SHADER_FILE_H
#define VORTICADE_SHADER_FILE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#define SHADER_FILE_BYTES_MAX (1 << 20) // of one file
#define SHADER_TEXT_BYTES_MAX (4 << 20) // with all that it includes
#define SHADER_LINES_MAX 100000         // of one file
#define SHADER_FILES_MAX 64
#define SHADER_INCLUDE_DEPTH_MAX 16

// What tells one version of a file from another. Zero-filled: there is no such file.
struct FileStamp {
    int64_t nSeconds;
    int64_t nNanoseconds;
    int64_t cbFile;
    uint64_t qwFile; // its number in the file system
    bool operator==(const FileStamp &) const = default;
};

struct ShaderPart {
    std::string path;
    std::string name; // as the user knows it: the file's name, or the name after #include
    FileStamp stamp;
};

// "#line" lines in the text count the lines of aPart[i] from i * SHADER_LINES_MAX + 1: not every driver minds the
// number of a source string.
struct ShaderText {
    std::string text;
    std::string header;            // the JSON of the header comment; empty: none
    int32_t nHeaderLine;           // on which it begins
    std::vector<ShaderPart> aPart; // the file itself first; filled also on failure, so that a mended file is noticed
};

// Reads a file with everything that it includes. The include folder is the one that FOLDER_SHADERINCLUDE names, else
// "Include" beside the file. False with *psError, in words for the user, on failure. [any-thread]
bool ReadShaderText(const std::string &path, ShaderText *pText, std::string *psError);
FileStamp StampOfFile(const std::string &path);
std::string NameOfPath(const std::string &path);

// UTF-8 from and to the host's wide text; what is invalid becomes U+FFFD.
std::string NarrowText(const char16_t *pszText);
std::u16string WideText(std::string_view text);

#endif
