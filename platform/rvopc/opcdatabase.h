#pragma once
#include <cstdint>
#include <map>
#include <string>

/// Which items of which OPC server stand for the module's notions: the link items, by key. One object in the
/// process, held by reference counts; its contents are configured by the host. Window thread only.
class COpcDatabase {
public:
    /// The process's object. Whoever uses it takes a reference by AddRef and gives it back by Release.
    static COpcDatabase* GetInstance();

    COpcDatabase(const COpcDatabase&) = delete;
    COpcDatabase& operator=(const COpcDatabase&) = delete;

    /// pWho names the holder, for the log.
    void AddRef(const char* pWho);
    /// Same word as in AddRef. On a count of 0 it asserts and does nothing. The object stays when the last
    /// holder goes: the host's configuration is to outlast them.
    void Release(const char* pWho);
    std::uint32_t GetRefCount() const { return m_RefCount; }

    /// The item configured for the key; empty if none.
    std::string GetOpcLinkItem(const std::string& rKey) const;
    /// Name of the server to use.
    const std::string& GetSelectedOpcServer() const { return m_Server; }

    /// Configures an item; an empty one takes the link away. Windows look when they are created.
    void SetOpcLinkItem(const std::string& rKey, const std::string& rItem);
    void SetSelectedOpcServer(std::string Server);
    /// Takes all links away.
    void Clear();

private:
    COpcDatabase() = default;
    ~COpcDatabase() = default;

    std::uint32_t m_RefCount = 0;
    std::string m_Server;
    std::map<std::string, std::string> m_LinkItems;
};

/// Holds the process's object for as long as it lives.
class COpcDatabaseRef {
public:
    explicit COpcDatabaseRef(const char* pWho) : m_pWho(pWho) { COpcDatabase::GetInstance()->AddRef(pWho); }
    ~COpcDatabaseRef() { COpcDatabase::GetInstance()->Release(m_pWho); }
    COpcDatabaseRef(const COpcDatabaseRef&) = delete;
    COpcDatabaseRef& operator=(const COpcDatabaseRef&) = delete;
    const COpcDatabase* operator->() const { return COpcDatabase::GetInstance(); }

private:
    const char* m_pWho;
};
