#pragma once
#include <cstdint>

/// Pages of the configuration, as message 1065 (WM_RV_HELPORMENU) names them: the help or menu of the page
/// shown.
namespace Pages {

enum Page : std::uint32_t {
    eSettings = 111,
    eScrewTable = 127,
};

}  // namespace Pages
