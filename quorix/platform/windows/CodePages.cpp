// The system's single-byte code pages, lent to the XML parser for files that declare one. The parser knows
// the Unicode encodings and ISO 8859 by itself; elsewhere it finds the rest in the C library.
#include "quorix/platform/windows/CodePages.h"

#include <libxml/encoding.h>
#include <windows.h>

#include <array>
#include <mutex>

namespace quorix::windows {
namespace {

using Characters = std::array<wchar_t, 256>;
constexpr wchar_t kNone = 0xFFFF;

template <UINT page>
const Characters& CharactersOf() {
    static const Characters characters = [] {
        Characters made;
        for (unsigned code = 0; code < made.size(); ++code) {
            const char single = static_cast<char>(code);
            if (MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, &single, 1, &made[code], 1) != 1) {
                made[code] = kNone;
            }
        }
        return made;
    }();
    return characters;
}

int Utf8Length(unsigned unit) { return unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3; }

unsigned char* AppendUtf8(unsigned char* out, unsigned unit) {
    const int length = Utf8Length(unit);
    if (length == 3) *out++ = static_cast<unsigned char>(0xE0U | (unit >> 12U));
    if (length >= 2) {
        *out++ =
            static_cast<unsigned char>(length == 3 ? 0x80U | ((unit >> 6U) & 0x3FU) : 0xC0U | (unit >> 6U));
        unit = 0x80U | (unit & 0x3FU);
    }
    *out++ = static_cast<unsigned char>(unit);
    return out;
}

// The parser's form of a decoder: converts what fits, and tells how much of each side it used. -2 for a
// byte that stands for nothing.
int Decode(const Characters& characters, unsigned char* out, int* outSize, const unsigned char* in,
           int* inSize) {
    unsigned char* const outStart = out;
    const unsigned char* const inStart = in;
    const unsigned char* const inEnd = in + *inSize;
    int result = 0;
    while (in < inEnd) {
        const wchar_t unit = characters[*in];
        if (unit == kNone) result = -2;
        if (unit == kNone || *outSize - (out - outStart) < Utf8Length(unit)) break;
        out = AppendUtf8(out, unit);
        ++in;
    }
    *outSize = static_cast<int>(out - outStart);
    *inSize = static_cast<int>(in - inStart);
    return result < 0 ? result : *outSize;
}

template <UINT page>
void Lend(const char* name, const char* alias) {
    xmlNewCharEncodingHandler(
        name,
        [](unsigned char* out, int* outSize, const unsigned char* in, int* inSize) {
            return Decode(CharactersOf<page>(), out, outSize, in, inSize);
        },
        nullptr);
    xmlAddEncodingAlias(name, alias);
}

void LendAll() {
    Lend<1250>("windows-1250", "cp1250");
    Lend<1251>("windows-1251", "cp1251");
    Lend<1252>("windows-1252", "cp1252");
    Lend<1253>("windows-1253", "cp1253");
    Lend<1254>("windows-1254", "cp1254");
    Lend<1255>("windows-1255", "cp1255");
    Lend<1256>("windows-1256", "cp1256");
    Lend<1257>("windows-1257", "cp1257");
    Lend<1258>("windows-1258", "cp1258");
    Lend<20866>("KOI8-R", "koi8r");
    Lend<21866>("KOI8-U", "koi8u");
    Lend<850>("IBM850", "cp850");
    Lend<866>("IBM866", "cp866");
}

}  // namespace

void LendCodePages() {
    static std::once_flag once;
    std::call_once(once, &LendAll);
}

}  // namespace quorix::windows
