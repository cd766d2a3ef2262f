// What the bytes of a stream mean: its header, its stanzas and its end. One manner for each mode of a
// session.
#pragma once

#include <memory>
#include <string_view>

#include "quorix/base/String.h"
#include "quorix/session/Framer.h"

namespace quorix {

struct StreamStep {
    enum class Kind {
        Nothing,  // more has to come
        Header,   // `streamId` is its id
        Stanza,   // or what stands between stanzas
        Error,    // the stream is of no use any more; `description` says why
        Closed,   // by its closing tag
    };

    StreamStep(Kind theKind = Kind::Nothing)
        : kind(theKind) {}  // NOLINT(google-explicit-constructor): it is one

    Kind kind;
    Frame frame;           // of a stanza
    String text;           // of a header or an error, as it came; "" when it is not to be reported
    String streamId;       // of a header
    String description;    // of an error
    bool isFinal = false;  // after this error, connecting again would bring the same
};

// Of one stream, from its first byte.
class StreamReader {
public:
    virtual ~StreamReader() = default;

    // More bytes, which must stay where they are until Next has answered Nothing. `wantsText`: somebody will
    // be told what has come as text.
    virtual void Feed(std::string_view bytes, bool wantsText) = 0;

    // std::bad_alloc when memory has run out: the stream is of no use any more.
    virtual StreamStep Next() = 0;

    // The session has ended; some of what was fed may not have been taken.
    virtual void Stop() {}
};

std::unique_ptr<StreamReader> NewClassicReader();

// `maxStanzaSize`, in bytes, is asked for whenever it is needed, and lives as long as the reader.
std::unique_ptr<StreamReader> NewModernReader(const std::int32_t& maxStanzaSize);

}  // namespace quorix
