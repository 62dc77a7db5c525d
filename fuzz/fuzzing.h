#pragma once
// What the fuzz targets share.
#include <cstdlib>

#include "platform/rvlog/logcomponent.h"

/// A property that must hold whatever comes; a search stops on its breach.
inline void Require(bool bHolds) {
    if (!bHolds) {
        std::abort();
    }
}

/// Opens every topic, so that what is written to the log is formatted too, but keeps it off the console.
inline void OpenAllTopics() {
    CLogComponent::SetConsoleMask(0);
    for (CLogComponent* pPublisher : CLogComponent::GetPublishers()) {
        pPublisher->SetLevel(0xFFFFFFFF);
    }
}
