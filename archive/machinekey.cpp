#include "archive/machinekey.h"

#include <regex>

using PreBalDB::CPreBalDatabase;
using PreBalDB::CTypeBase;

std::optional<CMachineKey> CMachineKey::Parse(const std::string& rText) {
    static const std::regex KEY("([01])#([0-9]{1,3})#([0-9]{1,3})-([012])s?-(.+-.+)-([0-9]{1,9})");
    std::smatch Parts;
    if (!std::regex_match(rText, Parts, KEY)) {
        return std::nullopt;
    }
    const auto Number = [&Parts](std::size_t i) { return std::stoi(Parts[i].str()); };
    constexpr int MAX_BYTE = 255;
    if (Number(2) > MAX_BYTE || Number(3) > MAX_BYTE) {
        return std::nullopt;
    }
    return CMachineKey{static_cast<CTypeBase::AffectedPlane>(Number(1)),
                       static_cast<std::uint8_t>(Number(2)),
                       static_cast<std::uint8_t>(Number(3)),
                       static_cast<CPreBalDatabase::BalancingMode>(Number(4)),
                       Parts[5].str(),
                       static_cast<std::uint32_t>(Number(6))};
}

bool CMachineKey::IsBalanced(std::size_t Plane) const {
    return IsTwoPlane() || Plane == (m_Mode == CPreBalDatabase::eModePlane2 ? 1U : 0U);
}
