#pragma once
#include "console/runverdict.h"

class CConsoleSession;

/// What has become of the result of the session's run, for people. bSaved: it stands in the store.
CSavedResult DescribeSavedResult(const CConsoleSession& rSession, bool bSaved);
