#pragma once
#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

/// A topic of a publisher, with its level bit.
struct CLogTopic {
    const char* m_pName;
    std::uint32_t m_Mask;
};

/// What a listener gets of a log call.
struct CLogRecord {
    std::string m_Publisher;
    std::string m_File;
    int m_Line = 0;
    std::string m_Function;
    std::uint32_t m_Mask = 0;
    std::string m_LevelName;  ///< "Error", "Warning", "Information", "Debug", or a topic
    std::string m_Text;
    std::string m_Expression;  ///< of an assertion
    bool m_bAssertion = false;
};

/// A publisher of the log: one per library, made by Register and held in a static pointer. A call's level
/// mask is tested against the publisher's level; errors and warnings are on from the start, topics off.
/// Written to a rotating file and, if asked, to the console; listeners see every call that passes the level,
/// and every assertion whatever the level. Any thread may log.
class CLogComponent {
public:
    static constexpr std::uint32_t ERROR = 1;
    static constexpr std::uint32_t WARNING = 2;
    static constexpr std::uint32_t INFORMATION = 4;
    static constexpr std::uint32_t DEBUG = 0x8000;
    static constexpr std::size_t LONGEST_LINE = std::size_t{16} * 1024;

    /// What all publishers write, also those that register later.
    struct CChoice {
        std::uint32_t m_Levels = ERROR | WARNING;
        std::vector<std::string> m_Topics;  ///< by name, of every publisher that has it

        bool operator==(const CChoice&) const = default;
    };

    /// The publisher of that name, made with these topics when new. Lives as long as the process.
    static CLogComponent* Register(const char* pPublisher, std::initializer_list<CLogTopic> Topics);
    /// The publisher of that name, or null.
    static CLogComponent* Find(const std::string& rPublisher);
    static std::vector<CLogComponent*> GetPublishers();

    const std::string& GetName() const { return m_Name; }
    const std::vector<CLogTopic>& GetTopics() const { return m_Topics; }
    std::uint32_t GetLevel() const { return m_Level; }
    void SetLevel(std::uint32_t Level) { m_Level = Level; }
    /// Sets the levels of all publishers.
    static void Choose(CChoice Choice);
    static CChoice GetChoice();

    /// printf-style. pLevelName is the level's or the topic's name.
    void Log(const char* pFile, int Line, const char* pFunction, std::uint32_t Mask, const char* pLevelName,
             const char* pFormat, ...) __attribute__((format(printf, 7, 8)));
    /// Brackets a group of lines under a heading.
    void LogStartBlock(const char* pFile, int Line, const char* pFunction, std::uint32_t Mask,
                       const char* pLevelName, const char* pHeading);
    void LogEndBlock(std::uint32_t Mask);
    /// A failed assertion. Logs and, with bShow, shows a message box titled "Error"; never changes the flow,
    /// but stops in a debugger that is attached if SetStopOnAssert says so.
    void LogAssert(const char* pFile, int Line, const char* pFunction, const char* pExpression,
                   const char* pText, bool bShow);

    static void SetStopOnAssert(bool bStop);

    /// A listener is called for each record, in the thread that logs, until the returned guard goes; after
    /// that it isn't running in any thread. It may log itself.
    using Listener = std::function<void(const CLogRecord&)>;
    [[nodiscard]] static std::shared_ptr<void> AddListener(Listener Callback);

    /// Starts writing to rDirectory/rotor_trim.log (5 files of 2 MB); false if it can't be opened. A record
    /// is a line, cut at LONGEST_LINE bytes: texts from outside can neither begin a line of their own nor
    /// fill the file.
    static bool OpenFile(const std::string& rDirectory);
    /// Lines whose mask has a bit in common with Mask go to stderr too; 0 (the default) none.
    static void SetConsoleMask(std::uint32_t Mask);

private:
    CLogComponent(std::string Name, std::initializer_list<CLogTopic> Topics);
    void Publish(const CLogRecord& rRecord);
    void Apply(const CChoice& rChoice);

    std::string m_Name;
    std::vector<CLogTopic> m_Topics;
    /// Read by every logging macro of every thread.
    std::atomic<std::uint32_t> m_Level = ERROR | WARNING;
    /// The open blocks. One whose heading the level kept out doesn't indent.
    struct CBlock {
        std::uint32_t m_Mask;
        bool m_bVisible;
    };
    std::vector<CBlock> m_Blocks;
};
