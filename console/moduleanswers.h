#pragma once
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

/// What modules have answered to the questions of a beginning, for a message that says why none was found.
class CModuleAnswers {
public:
    explicit CModuleAnswers(std::vector<std::uint8_t> Addresses) : m_Addresses(std::move(Addresses)) {}

    /// A frame from one of the addresses.
    void OnFrame(std::span<const std::uint8_t> Frame);
    /// One sentence a module. nDamaged: frames whose check sum or length was wrong; nOthers: good ones from
    /// other addresses.
    std::string Describe(std::uint64_t nDamaged, std::uint64_t nOthers) const;

private:
    using Bytes = std::vector<std::uint8_t>;
    struct CModule {
        Bytes m_Identification;  ///< the last answer; empty for none
        Bytes m_Set;
        bool m_bOther = false;  ///< other frames have come
    };
    static std::string DescribeModule(std::uint8_t Address, const CModule& rModule);

    std::vector<std::uint8_t> m_Addresses;
    std::map<std::uint8_t, CModule> m_Modules;  ///< by address, those that were heard
};
