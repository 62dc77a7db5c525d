#pragma once
#include "rvlib/rvprt/moduleidentification.h"

namespace Kestrel {

class CModuleIdentification : public Comm::CModuleIdentification {
public:
    explicit CModuleIdentification(const char* pLogID)
        : Comm::CModuleIdentification("Kestrel::CModuleIdentification", pLogID) {}
};

}  // namespace Kestrel
