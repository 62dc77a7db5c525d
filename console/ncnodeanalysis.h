#pragma once
#include "console/ncfacts.h"

/// Adds what the facts on the nodes mean: AnalyseNc's part for a server that let us in.
void AnalyseNcNodes(const CNcFacts& rFacts, CCheckReport& rReport);
