// What the library wants in place of these calls would load its providers: 2 MB for each process.
#define OPENSSL_SUPPRESS_DEPRECATED
#include "quorix/auth/SHAHash.h"

#include <openssl/sha.h>

#include <array>

#include "quorix/base/WireText.h"

namespace quorix {

String SHAHash(StringView wire) { return SHAHash(BytesFromWire(wire)); }

String SHAHash(std::string_view bytes) {
    std::array<unsigned char, SHA_DIGEST_LENGTH> digest{};
    SHA_CTX context;
    SHA1_Init(&context);
    SHA1_Update(&context, bytes.data(), bytes.size());
    SHA1_Final(digest.data(), &context);
    constexpr StringView kDigits = u"0123456789abcdef";
    String result;
    for (unsigned char byte : digest) {
        result += kDigits[byte >> 4U];
        result += kDigits[byte & 15U];
    }
    return result;
}

}  // namespace quorix
