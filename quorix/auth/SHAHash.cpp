#include "quorix/auth/SHAHash.h"

#include <openssl/evp.h>

#include <array>

#include "quorix/base/WireText.h"

namespace quorix {

String SHAHash(StringView wire) { return SHAHash(BytesFromWire(wire)); }

String SHAHash(std::string_view bytes) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha1(), nullptr);
    constexpr StringView kDigits = u"0123456789abcdef";
    String result;
    for (unsigned i = 0; i < size; ++i) {
        result += kDigits[digest[i] >> 4U];
        result += kDigits[digest[i] & 15U];
    }
    return result;
}

}  // namespace quorix
