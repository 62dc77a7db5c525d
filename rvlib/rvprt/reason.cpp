#include "rvlib/rvprt/reason.h"

#include "rvlib/rvprt/log.h"

namespace Comm {

const char* ReasonToString(Reason Why) {
    switch (Why) {
        case eSuccess:
            return "eSuccess";
        case eIndication:
            return "eIndication";
        case eTimeout:
            return "eTimeout";
        case eError:
            return "eError";
    }
    RV_ASSERT_FAIL(Protocols::g_pLog, "unknown Reason");
    return "unknown Reason !?!";
}

}  // namespace Comm
