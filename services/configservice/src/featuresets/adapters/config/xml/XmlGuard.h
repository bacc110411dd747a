#pragma once

#include "XmlLibrary.h"

#include <libxml/globals.h>
#include <libxml/xmlerror.h>

namespace ZelUnified {

/// Makes libxml2 safe for untrusted bytes. Create one before every use of libxml2 on such bytes. While it exists, on
/// the calling thread, the library prints no messages (they quote the offending line, including secrets), substitutes
/// no entities and loads no external DTD, so a document cannot make it open a file or a connection. The destructor
/// restores the thread's settings, because other users in the process share the library.
class XmlGuard {
public:
    XmlGuard();
    ~XmlGuard();
    XmlGuard(const XmlGuard&) = delete;
    XmlGuard& operator=(const XmlGuard&) = delete;

private:
    const XmlLibrary library; ///< Declared first: the other members read the library's settings.
    xmlStructuredErrorFunc structuredHandler;
    void* structuredContext;
    xmlGenericErrorFunc genericHandler;
    void* genericContext;
    int substituteEntities;
    int loadExternalDtd;
    int validate;
    int keepBlanks;
};

} // namespace ZelUnified
