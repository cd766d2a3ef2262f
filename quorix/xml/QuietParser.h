// Keeps the parser library from printing while in scope. Most of its errors go to a handler of the parser at
// hand, but unknown functions in a query and undecodable bytes in a file go to the thread's handlers alone.
#pragma once

#include <libxml/globals.h>

#include <new>

namespace quorix {

class QuietParser {
public:
    QuietParser() {
        xmlSetGenericErrorFunc(nullptr, IgnoreText);
        xmlSetStructuredErrorFunc(nullptr, IgnoreError);
        xmlResetLastError();
    }
    ~QuietParser() {
        xmlSetGenericErrorFunc(genericContext_, generic_);
        xmlSetStructuredErrorFunc(structuredContext_, structured_);
    }
    QuietParser(const QuietParser&) = delete;
    QuietParser& operator=(const QuietParser&) = delete;

    // The library answers many a call as if nothing were there when it has run out of memory.
    static void RequireMemory(const xmlError& last = xmlLastError) {
        if (last.code == XML_ERR_NO_MEMORY) throw std::bad_alloc();
    }

private:
    static void IgnoreText(void*, const char*, ...) {}
    static void IgnoreError(void*, xmlError*) {}

    void* genericContext_ = xmlGenericErrorContext;
    xmlGenericErrorFunc generic_ = xmlGenericError;
    void* structuredContext_ = xmlStructuredErrorContext;
    xmlStructuredErrorFunc structured_ = xmlStructuredError;
};

}  // namespace quorix
