#pragma once
#include "rvlib/rvprt/moduleidentification.h"

namespace Lanner {

class CModuleIdentification : public Comm::CModuleIdentification {
public:
    explicit CModuleIdentification(const char* pLogID)
        : Comm::CModuleIdentification("Lanner::CModuleIdentification", pLogID) {}
};

}  // namespace Lanner
