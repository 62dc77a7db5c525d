#include "console/messagelog.h"

#include <QString>
#include <QStringList>
#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/rvlog/logcomponent.h"
#include "platform/system/eventloop.h"

namespace {

/// Traces are for the file only: they would push out within a moment what people look for.
constexpr std::uint32_t FOR_PEOPLE =
    CLogComponent::ERROR | CLogComponent::WARNING | CLogComponent::INFORMATION;

CMessageLog::Level GetLevel(const CLogRecord& rRecord) {
    if (rRecord.m_bAssertion || rRecord.m_Mask == CLogComponent::ERROR) {
        return CMessageLog::Level::eError;
    }
    return rRecord.m_Mask == CLogComponent::WARNING ? CMessageLog::Level::eWarning
                                                    : CMessageLog::Level::eInformation;
}

}  // namespace

struct CMessageLog::CPending {
    std::mutex m_Mutex;
    std::deque<std::pair<Level, std::string>> m_Lines;
};

CMessageLog::CMessageLog() : m_pPending(std::make_shared<CPending>()) {
    m_pLogGuard = CLogComponent::AddListener([pPending = m_pPending](const CLogRecord& rRecord) {
        if ((rRecord.m_Mask & FOR_PEOPLE) == 0) {
            return;
        }
        const std::scoped_lock Lock(pPending->m_Mutex);
        pPending->m_Lines.emplace_back(GetLevel(rRecord), rRecord.m_Publisher + ": " + rRecord.m_Text);
        if (pPending->m_Lines.size() > MOST_LINES) {
            pPending->m_Lines.pop_front();
        }
    });
}

CMessageLog::~CMessageLog() = default;

void CMessageLog::Say(const std::string& rText) {
    Collect();
    Add(Level::eMessage, rText);
}

void CMessageLog::Collect() {
    std::deque<std::pair<Level, std::string>> New;
    {
        const std::scoped_lock Lock(m_pPending->m_Mutex);
        New.swap(m_pPending->m_Lines);
    }
    for (auto& [rLevel, rText] : New) {
        Add(rLevel, std::move(rText));
    }
}

void CMessageLog::Add(Level How, std::string Text) {
    m_Lines.push_back({++m_nLast, IFEventLoop::Current().WallClock(), How, std::move(Text)});
    if (m_Lines.size() > MOST_LINES) {
        m_Lines.pop_front();
    }
}

bool CMessageLog::Matches(const CLine& rLine, Level Least, const std::string& rWords) {
    const Level How = rLine.m_Level == Level::eMessage ? Level::eWarning : rLine.m_Level;
    if (How < Least) {
        return false;
    }
    const QString Text = QString::fromStdString(rLine.m_Text);
    const QStringList Words = QString::fromStdString(rWords).split(' ', Qt::SkipEmptyParts);
    return std::ranges::all_of(
        Words, [&Text](const QString& rWord) { return Text.contains(rWord, Qt::CaseInsensitive); });
}
