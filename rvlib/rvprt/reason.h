#pragma once

/// What the two module families share.
namespace Comm {

/// Why a callback of the communication comes.
enum Reason : int {
    eSuccess = 0,     ///< an answer to a request of ours
    eIndication = 1,  ///< the module sent this by itself
    eTimeout = 2,     ///< all transmissions went unanswered
    eError = 3        ///< an answer came but could not be used
};

/// The enumerator's name. Another value asserts.
const char* ReasonToString(Reason Why);

}  // namespace Comm

using Comm::Reason;
