#pragma once

#include "XmlLibrary.h"

#include <libxml/globals.h>
#include <libxml/xmlerror.h>

namespace ZelUnified {

/// Stands around every use of libxml2 on foreign bytes. For the calling thread and its own lifetime: the library says
/// nothing (its messages quote the offending line, secrets included), substitutes no entity, loads no external DTD and
/// so opens neither a file nor a connection of the document's choice. The thread's settings are then put back, since
/// the process shares the library.
class XmlGuard {
public:
    XmlGuard();
    ~XmlGuard();
    XmlGuard(const XmlGuard&) = delete;
    XmlGuard& operator=(const XmlGuard&) = delete;

private:
    const XmlLibrary library; ///< First: what is kept behind it is asked of the library.
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
