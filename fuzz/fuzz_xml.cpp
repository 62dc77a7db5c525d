// A settings document as it lies in a file: any bytes through the decoders, the parser and the lookups.
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "rvlib/settings/textfile.h"
#include "rvlib/settings/xmldata.h"

namespace {

void Require(bool bHolds) {
    if (!bHolds) {
        std::abort();
    }
}

/// What was decoded is UTF-8: continuation bytes stand only where a lead byte announced them, and all of
/// them.
bool IsUtf8(const std::string& rText) {
    std::size_t nExpected = 0;
    for (const char Character : rText) {
        const auto Byte = static_cast<std::uint8_t>(Character);
        const bool bContinuation = (Byte & 0xC0) == 0x80;
        if (bContinuation != (nExpected > 0)) {
            return false;
        }
        if (bContinuation) {
            --nExpected;
        } else if (Byte >= 0xF0) {
            nExpected = 3;
        } else if (Byte >= 0xE0) {
            nExpected = 2;
        } else if (Byte >= 0xC0) {
            nExpected = 1;
        }
    }
    return nExpected == 0;
}

/// Each node of a tree can be found from itself, and its attributes read.
void LookUp(const CWKXMLData& rData, CWKXMLData::CNode* pNode) {
    Require(rData.FindNode(pNode->m_Name, pNode) == pNode);
    for (const CWKXMLData::CEntry* pEntry : pNode->m_Entries) {
        // The first of that name, not always this one.
        CWKXMLData::GetEntry(pNode, pEntry->m_Name, "");
        CWKXMLData::GetEntryInt(pNode, pEntry->m_Name, -1);
    }
    for (CWKXMLData::CNode* pChild : pNode->m_Children) {
        Require(pChild->m_pParent == pNode);
        LookUp(rData, pChild);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    std::string Text;
    const TextEncoding Encoding = DecodeText(std::span(pData, nSize), Text);
    Require(Encoding != eNoText);
    Require((Encoding == eSingleByteText) || IsUtf8(Text));

    CWKXMLData Data;
    const bool bParsed = Data.ParseString(Text);
    Require(bParsed || (Data.IsEmpty() && !Data.GetLastError().empty()));
    if (Data.HasRoot()) {
        CWKXMLData::CNode* const pRoot = Data.FindNodeByPath("Corvane", "\\");
        if (pRoot != nullptr) {
            LookUp(Data, pRoot);
        }
        Require(!Data.ParseString(Text));
    }
    // The input is also a path, through a tree that has what it may name.
    Data.FindNodeByPath(Text, "\\<>");
    return 0;
}
