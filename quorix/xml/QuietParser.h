// Keeps the parser library from printing while in scope. Most of its errors go to a handler of the parser at
// hand, but unknown functions in a query and undecodable bytes in a file go to the thread's handlers alone.
#pragma once

#include <libxml/globals.h>

namespace quorix {

class QuietParser {
public:
    QuietParser() {
        xmlSetGenericErrorFunc(nullptr, IgnoreText);
        xmlSetStructuredErrorFunc(nullptr, IgnoreError);
    }
    ~QuietParser() {
        xmlSetGenericErrorFunc(genericContext_, generic_);
        xmlSetStructuredErrorFunc(structuredContext_, structured_);
    }
    QuietParser(const QuietParser&) = delete;
    QuietParser& operator=(const QuietParser&) = delete;

private:
    static void IgnoreText(void*, const char*, ...) {}
    static void IgnoreError(void*, xmlError*) {}

    void* genericContext_ = xmlGenericErrorContext;
    xmlGenericErrorFunc generic_ = xmlGenericError;
    void* structuredContext_ = xmlStructuredErrorContext;
    xmlStructuredErrorFunc structured_ = xmlStructuredError;
};

}  // namespace quorix
