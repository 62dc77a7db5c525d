#pragma once
#include <chrono>

/// The date as it really is, also under virtual time, whose loop pins its own: for records that people look
/// up by date afterwards. Whatever a run does, and its report, goes by IFEventLoop alone.
std::chrono::sys_seconds GetRealDate();
