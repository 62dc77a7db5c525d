#include "rvlib/settings/xmldata.h"

#include <algorithm>
#include <new>
#include <string_view>

#include "platform/system/text.h"

namespace {

using Tokens = std::deque<std::string>;

constexpr std::string_view HEADER_CHARACTERS = "\"<>?";
constexpr std::string_view ATTRIBUTE_START = "=\"";

bool Contains(std::string_view Text, std::string_view Part) {
    return Text.find(Part) != std::string_view::npos;
}

std::string WithoutLeadingBlanks(const std::string& rText) {
    return rText.substr(std::min(rText.find_first_not_of(' '), rText.size()));
}

std::string WithoutPrefixAndSuffix(std::string_view Token, std::string_view Prefix, std::string_view Suffix) {
    if (Token.starts_with(Prefix)) {
        Token.remove_prefix(Prefix.size());
    }
    if (Token.ends_with(Suffix)) {
        Token.remove_suffix(Suffix.size());
    }
    return std::string(Token);
}

/// First pass: tags and the texts between them. A text behind the last tag is dropped.
Tokens SplitTokens(const std::string& rText) {
    Tokens Result;
    std::string Buffer;
    bool bInTag = false;
    bool bInQuotes = false;
    const auto TakeBuffer = [&] {
        std::string Token = WithoutLeadingBlanks(Buffer);
        if (!Token.empty()) {
            Result.push_back(std::move(Token));
        }
        Buffer.clear();
    };
    for (char Character : rText) {
        if (Character == '\r') {
            continue;
        }
        if ((Character == '\t') || (Character == '\n')) {
            Character = ' ';
        }
        if ((Character == '<') && !bInTag && !bInQuotes) {
            TakeBuffer();
            bInTag = true;
        }
        // Quotes count in texts too: a lone one makes the next tag a part of the text.
        if (Character == '"') {
            bInQuotes = !bInQuotes;
        }
        Buffer += Character;
        if ((Character == '>') && bInTag && !bInQuotes) {
            TakeBuffer();
            bInTag = false;
        }
    }
    return Result;
}

/// A document without a header must at least begin and end with the same element.
bool IsBareDocument(const std::string& rFirst, const std::string& rLast) {
    if (!Contains(rFirst, "<") || !Contains(rFirst, ">") || !Contains(rLast, "<") || !Contains(rLast, ">")) {
        return false;
    }
    const std::string First = Text::Trim(rFirst, HEADER_CHARACTERS);
    const std::string Last = Text::Trim(rLast, std::string(HEADER_CHARACTERS) + "/");
    return !First.empty() && !Last.empty() && Last.starts_with(First);
}

}  // namespace

CWKXMLData::CNode::CNode(CNode* pParent, std::string Name) : m_pParent(pParent), m_Name(std::move(Name)) {
    std::replace(m_Name.begin(), m_Name.end(), ' ', '_');
}

CWKXMLData::CNode::~CNode() {
    // Not recursive: a document may be nested deeper than the stack of the thread.
    std::vector<std::unique_ptr<CNode>> Pending;
    const auto TakeChildren = [&Pending](CNode& rNode) {
        while (CNode* const pChild = rNode.m_Children.RemoveTail()) {
            Pending.emplace_back(pChild);
        }
    };
    TakeChildren(*this);
    while (!Pending.empty()) {
        const std::unique_ptr<CNode> pNode = std::move(Pending.back());
        Pending.pop_back();
        TakeChildren(*pNode);
    }
    m_Entries.RemoveAll(true);
    m_Sections.RemoveAll(true);
}

void CWKXMLData::CStringStack::Push(std::string Text) {
    // Tested before the text is added: the stack may hold one more than its limit, which is deliberate.
    if (m_Texts.size() > static_cast<std::size_t>(m_nLimit)) {
        m_Texts.pop_back();
    }
    m_Texts.push_front(std::move(Text));
}

std::string CWKXMLData::CStringStack::Pop() {
    if (m_Texts.empty()) {
        return {};
    }
    std::string Text = std::move(m_Texts.front());
    m_Texts.pop_front();
    return Text;
}

/// Second pass: builds the tree, token by token.
class CWKXMLData::CBodyParser {
public:
    explicit CBodyParser(CWKXMLData& rData) : m_rData(rData) {}

    /// The rules by what the token begins with; the first that fits. False for a token that fits nowhere.
    bool Apply(const std::string& rToken) {
        if (rToken.starts_with("<!")) {
            // Only the odd form "!>" takes this from the stack again. So a comment in the body ends in an
            // error: comments are safe only in front of the root, which is deliberate.
            m_Names.Push(rToken.substr(1));
            return true;
        }
        if (rToken.starts_with("!>")) {
            return m_Names.Pop() == WithoutPrefixAndSuffix(rToken, "", ">");
        }
        if (rToken.starts_with("</")) {
            return CloseNode(WithoutPrefixAndSuffix(rToken, "</", ">"));
        }
        if (rToken.starts_with("/")) {
            m_Names.Pop();
            return LeaveNode();
        }
        if (!rToken.starts_with("<")) {
            return SetText(Text::Trim(rToken));
        }
        // "/>" also counts inside a value. What is cut off is the same for both forms.
        const bool bSection = Contains(rToken, "/>");
        const std::string Body = WithoutPrefixAndSuffix(rToken, "<", bSection ? "/>" : ">");
        if (Contains(rToken, ATTRIBUTE_START)) {
            return AddElement(Text::Trim(Body), bSection);
        }
        return bSection ? AddSection(Body) != nullptr : AddNode(Body) != nullptr;
    }

    bool IsComplete() const { return m_Names.IsEmpty(); }

private:
    bool LeaveNode() {
        if ((m_pCurrent == nullptr) || (m_pCurrent->m_pParent == nullptr)) {
            return false;
        }
        m_pCurrent = m_pCurrent->m_pParent;
        return true;
    }

    bool CloseNode(const std::string& rName) {
        if (m_Names.Pop() != rName) {
            return false;
        }
        m_pCurrent = (m_pCurrent == nullptr) ? nullptr : m_pCurrent->m_pParent;
        return true;
    }

    bool SetText(const std::string& rText) {
        if ((m_pCurrent == nullptr) || !m_pCurrent->m_Value.empty()) {
            return false;
        }
        m_pCurrent->m_Value = rText;
        return true;
    }

    CNode* AddNode(const std::string& rName) {
        CNode* const pNode = m_rData.AddNode(m_pCurrent, rName);
        if (pNode != nullptr) {
            m_Names.Push(rName);
            m_pCurrent = pNode;
        }
        return pNode;
    }

    CSection* AddSection(const std::string& rName) {
        if (m_pCurrent == nullptr) {
            return nullptr;
        }
        return m_pCurrent->m_Sections.AddTail(std::make_unique<CSection>(rName));
    }

    /// An element with attributes. Its name ends at the first blank; without one no element comes about.
    bool AddElement(const std::string& rBody, bool bSection) {
        const std::size_t Blank = rBody.find(' ');
        if (Blank == std::string::npos) {
            return false;
        }
        const std::string Name = rBody.substr(0, Blank);
        CWKList<CEntry>* pEntries = nullptr;
        if (bSection) {
            CSection* const pSection = AddSection(Name);
            pEntries = (pSection == nullptr) ? nullptr : &pSection->m_Entries;
        } else {
            CNode* const pNode = AddNode(Name);
            pEntries = (pNode == nullptr) ? nullptr : &pNode->m_Entries;
        }
        if (pEntries == nullptr) {
            return false;
        }
        AddEntries(std::string_view(rBody).substr(Blank), *pEntries);
        return true;
    }

    /// What is left over behind the last quote is ignored.
    static void AddEntries(std::string_view Attributes, CWKList<CEntry>& rEntries) {
        std::string Buffer;
        std::string Name;
        bool bInQuotes = false;
        for (const char Character : Attributes) {
            if (Character != '"') {
                if (bInQuotes || (Character != ' ')) {
                    Buffer += Character;
                }
                continue;
            }
            if (bInQuotes) {
                rEntries.AddTail(std::make_unique<CEntry>(Name, Buffer));
            } else {
                Name = Buffer.substr(0, Buffer.find_last_not_of('=') + 1);
            }
            Buffer.clear();
            bInQuotes = !bInQuotes;
        }
    }

    CWKXMLData& m_rData;
    CNode* m_pCurrent = nullptr;
    CStringStack m_Names;
};

bool CWKXMLData::TakeHeader(std::deque<std::string>& rTokens) {
    if (rTokens.empty()) {
        m_LastError = "No data to parse.";
        return false;
    }
    if (Contains(rTokens.front(), "<?xml")) {
        for (const std::string& rPiece : Text::Split(rTokens.front(), " ")) {
            const std::size_t Equals = std::min(rPiece.find('='), rPiece.size());
            const std::string Name = Text::Trim(rPiece.substr(0, Equals), HEADER_CHARACTERS);
            const std::string Value =
                Text::Trim(rPiece.substr(std::min(Equals + 1, rPiece.size())), HEADER_CHARACTERS);
            if (Contains(Name, "version")) {
                m_Version = Value;
            }
            if (Contains(Name, "encoding")) {
                m_Encoding = Value;
            }
        }
        if (m_Encoding.empty()) {
            m_Encoding = "UTF-8";
        }
        rTokens.pop_front();
    } else if (IsBareDocument(rTokens.front(), rTokens.back())) {
        m_Version = "1.0";
        m_Encoding = "UTF-8";
    } else {
        rTokens.clear();
    }
    if (rTokens.empty()) {
        m_LastError = "Irregular xml header or missing end tag.";
        return false;
    }
    while (!rTokens.empty() && (Contains(rTokens.front(), "<?xml") || Contains(rTokens.front(), "<!--"))) {
        rTokens.pop_front();
    }
    return true;
}

bool CWKXMLData::ParseString(const std::string& rText) {
    if (HasRoot()) {
        return false;
    }
    Tokens Pending = SplitTokens(rText);
    if (!TakeHeader(Pending)) {
        return false;
    }
    CBodyParser Parser(*this);
    for (const std::string& rToken : Pending) {
        bool bApplied = false;
        try {
            bApplied = Parser.Apply(rToken);
        } catch (const std::bad_alloc&) {
            // Counts as a token that fits nowhere: the tree goes and the memory with it.
        }
        if (!bApplied) {
            m_LastError = "Unexpected token '" + rToken + "'";
            if (HasRoot()) {
                m_LastError += " at node '" + m_Nodes.GetHead()->m_Name + "'";
            }
            m_LastError += ".";
            DeleteRoot();
            return false;
        }
    }
    if (!Parser.IsComplete()) {
        m_LastError = "Missing closing tag or invalid end of file.";
        DeleteRoot();
        return false;
    }
    return true;
}

bool CWKXMLData::CreateRoot(const std::string& rName) {
    return AddNode(nullptr, rName) != nullptr;
}

void CWKXMLData::DeleteRoot() {
    m_Nodes.RemoveAll(true);
}

CWKXMLData::CNode* CWKXMLData::AddNode(CNode* pParent, const std::string& rName) {
    if ((pParent == nullptr) && HasRoot()) {
        return nullptr;
    }
    CWKList<CNode>& rSiblings = (pParent == nullptr) ? m_Nodes : pParent->m_Children;
    return rSiblings.AddTail(std::make_unique<CNode>(pParent, rName));
}

CWKXMLData::CNode* CWKXMLData::FindNode(const std::string& rName, CNode* pStart) const {
    std::vector<CNode*> Pending;
    if (CNode* const pFirst = (pStart != nullptr) ? pStart : m_Nodes.GetHead()) {
        Pending.push_back(pFirst);
    }
    while (!Pending.empty()) {
        CNode* const pNode = Pending.back();
        Pending.pop_back();
        if (Text::EqualNoCase(pNode->m_Name, rName)) {
            return pNode;
        }
        // Turned around, so that the first child is looked at first, with all below it.
        const auto Behind = static_cast<std::ptrdiff_t>(Pending.size());
        Pending.insert(Pending.end(), pNode->m_Children.begin(), pNode->m_Children.end());
        std::reverse(Pending.begin() + Behind, Pending.end());
    }
    return nullptr;
}

CWKXMLData::CNode* CWKXMLData::FindNodeByPath(const std::string& rPath, const std::string& rSeparators,
                                              CNode* pStart) const {
    CNode* pNode = nullptr;
    for (const std::string& rPart : Text::Split(rPath, rSeparators)) {
        pNode = FindNode(rPart, (pNode == nullptr) ? pStart : pNode);
        if (pNode == nullptr) {
            return nullptr;
        }
    }
    return pNode;
}

std::string CWKXMLData::GetEntry(const CNode* pNode, const std::string& rName, const std::string& rDefault) {
    if (pNode != nullptr) {
        for (const CEntry* pEntry : pNode->m_Entries) {
            if (Text::EqualNoCase(pEntry->m_Name, rName)) {
                return pEntry->m_Value;
            }
        }
    }
    return rDefault;
}

int CWKXMLData::GetEntryInt(const CNode* pNode, const std::string& rName, int nDefault) {
    return Text::ToInt(GetEntry(pNode, rName, std::to_string(nDefault)));
}
