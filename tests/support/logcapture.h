#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/rvlog/logcomponent.h"

/// Gathers what is logged while it lives; every topic of every publisher is on meanwhile if bAllTopics.
class CLogCapture {
public:
    explicit CLogCapture(bool bAllTopics = false) {
        for (CLogComponent* pPublisher : CLogComponent::GetPublishers()) {
            m_Levels.emplace_back(pPublisher, pPublisher->GetLevel());
            if (bAllTopics) {
                pPublisher->SetLevel(0xFFFFFFFF);
            }
        }
        m_pGuard =
            CLogComponent::AddListener([this](const CLogRecord& rRecord) { m_Records.push_back(rRecord); });
    }
    ~CLogCapture() {
        m_pGuard.reset();
        for (auto& [pPublisher, Level] : m_Levels) {
            pPublisher->SetLevel(Level);
        }
    }
    CLogCapture(const CLogCapture&) = delete;
    CLogCapture& operator=(const CLogCapture&) = delete;

    /// Texts of the assertions so far.
    std::vector<std::string> GetAssertions() const {
        std::vector<std::string> Texts;
        for (const CLogRecord& rRecord : m_Records) {
            if (rRecord.m_bAssertion) {
                Texts.push_back(rRecord.m_Text);
            }
        }
        return Texts;
    }
    /// Texts logged at a level or topic, for example "Warning".
    std::vector<std::string> GetTexts(const std::string& rLevelName) const {
        std::vector<std::string> Texts;
        for (const CLogRecord& rRecord : m_Records) {
            if (!rRecord.m_bAssertion && rRecord.m_LevelName == rLevelName) {
                Texts.push_back(rRecord.m_Text);
            }
        }
        return Texts;
    }
    const std::vector<CLogRecord>& GetRecords() const { return m_Records; }
    void Clear() { m_Records.clear(); }

private:
    std::vector<std::pair<CLogComponent*, std::uint32_t>> m_Levels;
    std::vector<CLogRecord> m_Records;
    std::shared_ptr<void> m_pGuard;
};
