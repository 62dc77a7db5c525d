#pragma once
#include <CLI/CLI.hpp>
#include <string>

#include "console/options.h"

/// The options that say which modules answer on which line: --link, --modules, --addresses, --mode.
void AddLinkOptions(CLI::App& rApp, COptions& rOptions);
/// What doesn't fit together of them, empty if all is well.
std::string FindLinkContradiction(const COptions& rOptions);

/// Checks for these values. The help's words name them, once.
template <typename T = std::string>
CLI::Validator OneOf(std::vector<T> Values) {
    return CLI::IsMember(std::move(Values)).description("");
}
