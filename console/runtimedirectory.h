#pragma once
#include <memory>

#include "platform/system/temporarydirectory.h"

/// The toolkit complains about a session without a runtime directory. Sockets go there, so that it is this
/// user's alone; null if there is one.
std::unique_ptr<CTemporaryDirectory> ProvideRuntimeDirectory();
