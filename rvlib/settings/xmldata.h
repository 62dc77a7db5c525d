#pragma once
#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "platform/system/object.h"
#include "rvlib/settings/textfile.h"
#include "rvlib/settings/wklist.h"

/// A small configuration document in memory: a tree that is read from text and answers lookups by path. Not a
/// general XML parser: it knows elements with a closing tag (nodes), empty elements (sections), attributes in
/// double quotes and one text an element. Entities aren't decoded, and comments are safe only in front of the
/// root. It forgives where a conforming parser would object. Text is UTF-8.
///
/// Operations return false on failure; of ParseString GetLastError says why. Nothing is thrown.
class CWKXMLData : public CObject {
public:
    /// An attribute. Values are kept as text and converted on reading.
    class CEntry {
    public:
        CEntry(std::string Name, std::string Value) : m_Name(std::move(Name)), m_Value(std::move(Value)) {}

        std::string m_Name;
        std::string m_Value;
    };

    /// An empty element, one written with a closing "/>". Its name is kept as read.
    class CSection {
    public:
        explicit CSection(std::string Name) : m_Name(std::move(Name)) {}
        ~CSection() { m_Entries.RemoveAll(true); }
        CSection(const CSection&) = delete;
        CSection& operator=(const CSection&) = delete;

        std::string m_Name;
        CWKList<CEntry> m_Entries;
    };

    /// An element with a closing tag. Blanks in its name are replaced by "_".
    class CNode {
    public:
        CNode(CNode* pParent, std::string Name);
        ~CNode();
        CNode(const CNode&) = delete;
        CNode& operator=(const CNode&) = delete;

        CNode* m_pParent;  ///< null for the root
        std::string m_Name;
        std::string m_Value;
        CWKList<CEntry> m_Entries;
        CWKList<CSection> m_Sections;
        CWKList<CNode> m_Children;
    };

    /// A bounded stack of text; the newest is at the head.
    class CStringStack {
    public:
        explicit CStringStack(int nLimit = 256) : m_nLimit(nLimit) {}

        /// Drops the oldest entry first if the count exceeds the limit.
        void Push(std::string Text);
        /// Removes and returns the newest; empty text if there is none.
        std::string Pop();
        bool IsEmpty() const { return m_Texts.empty(); }
        std::size_t GetCount() const { return m_Texts.size(); }

    private:
        int m_nLimit;
        std::deque<std::string> m_Texts;
    };

    CWKXMLData() = default;
    ~CWKXMLData() override { DeleteRoot(); }
    CWKXMLData(const CWKXMLData&) = delete;
    CWKXMLData& operator=(const CWKXMLData&) = delete;

    /// Reads a document. False, with nothing done, if a root exists. A failure leaves no partial tree. True
    /// with no tree for a document that holds only headers and comments.
    bool ParseString(const std::string& rText);
    /// Makes a root without attributes. False if there is one.
    bool CreateRoot(const std::string& rName);
    void DeleteRoot();
    bool HasRoot() const { return !m_Nodes.IsEmpty(); }
    bool IsEmpty() const { return m_Nodes.IsEmpty(); }

    /// Adds a node behind the parent's children. Without a parent the node is the root; null if there is one.
    CNode* AddNode(CNode* pParent, const std::string& rName);
    /// First node of that name, depth first, pStart itself included; case doesn't count. pStart null: the
    /// root.
    CNode* FindNode(const std::string& rName, CNode* pStart = nullptr) const;
    /// Looks for each part of the path from the node last found. Any character of rSeparators separates;
    /// empty parts don't count. Null if a part isn't found, or if there is none.
    CNode* FindNodeByPath(const std::string& rPath, const std::string& rSeparators,
                          CNode* pStart = nullptr) const;
    /// Value of the node's first attribute of that name; case doesn't count. rDefault if there is none, or
    /// for a null node.
    static std::string GetEntry(const CNode* pNode, const std::string& rName, const std::string& rDefault);
    /// The same as a number: leading digits count, and text that is no number reads as 0.
    static int GetEntryInt(const CNode* pNode, const std::string& rName, int nDefault);

    const std::string& GetVersion() const { return m_Version; }
    const std::string& GetEncoding() const { return m_Encoding; }
    /// Text of the last failure.
    const std::string& GetLastError() const { return m_LastError; }

private:
    class CBodyParser;

    bool TakeHeader(std::deque<std::string>& rTokens);

    CWKList<CNode> m_Nodes;  ///< the root, or nothing
    std::string m_Version = "1.0";
    std::string m_Encoding = "UTF-8";
    std::string m_LastError;
};
