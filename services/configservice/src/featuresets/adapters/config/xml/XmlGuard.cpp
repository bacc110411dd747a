#include "XmlGuard.h"

#include <libxml/parser.h>

namespace ZelUnified {

namespace {

void ignoreMessage(void*, const char*, ...) {}

} // namespace

XmlGuard::XmlGuard()
    : structuredHandler(xmlStructuredError),
      structuredContext(xmlStructuredErrorContext),
      genericHandler(xmlGenericError),
      genericContext(xmlGenericErrorContext),
      substituteEntities(xmlSubstituteEntitiesDefaultValue),
      loadExternalDtd(xmlLoadExtDtdDefaultValue),
      validate(xmlDoValidityCheckingDefaultValue),
      keepBlanks(xmlKeepBlanksDefaultValue) {
    // `auto`: the type of the second parameter differs between versions of the library.
    xmlSetStructuredErrorFunc(nullptr, [](void*, auto*) {});
    xmlSetGenericErrorFunc(nullptr, &ignoreMessage);
    xmlSubstituteEntitiesDefaultValue = 0;
    xmlLoadExtDtdDefaultValue = 0;
    xmlDoValidityCheckingDefaultValue = 0;
    xmlKeepBlanksDefaultValue = 1;
}

XmlGuard::~XmlGuard() {
    xmlResetLastError(); // it quotes the document
    xmlKeepBlanksDefaultValue = keepBlanks;
    xmlDoValidityCheckingDefaultValue = validate;
    xmlLoadExtDtdDefaultValue = loadExternalDtd;
    xmlSubstituteEntitiesDefaultValue = substituteEntities;
    xmlSetGenericErrorFunc(genericContext, genericHandler);
    xmlSetStructuredErrorFunc(structuredContext, structuredHandler);
}

} // namespace ZelUnified
