#include "rvlib/settings/xmldata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsNull;
using testing::NotNull;

using CNode = CWKXMLData::CNode;
using CSection = CWKXMLData::CSection;

constexpr const char* HEADER = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

/// Parses a text behind a header and tells the error, empty for success.
std::string ErrorOf(const std::string& rBody) {
    CWKXMLData Data;
    const bool bParsed = Data.ParseString(HEADER + rBody);
    EXPECT_EQ(bParsed, Data.GetLastError().empty()) << rBody;
    // A failed parse keeps no partial tree.
    EXPECT_TRUE(bParsed || Data.IsEmpty()) << rBody;
    return Data.GetLastError();
}

/// A document that must parse.
class CDocument {
public:
    explicit CDocument(const std::string& rText) {
        EXPECT_TRUE(m_Data.ParseString(rText)) << rText << ": " << m_Data.GetLastError();
    }
    CWKXMLData& Get() { return m_Data; }
    /// Of a document whose root is "a".
    CNode* Root() { return m_Data.FindNode("a"); }
    CNode* Find(const char* pName) { return m_Data.FindNode(pName); }

private:
    CWKXMLData m_Data;
};

template <typename T>
std::vector<std::string> NamesOf(const CWKList<T>& rList) {
    std::vector<std::string> Names;
    for (const T* pElement : rList) {
        Names.push_back(pElement->m_Name);
    }
    return Names;
}

std::vector<std::string> ValuesOf(const CWKList<CWKXMLData::CEntry>& rList) {
    std::vector<std::string> Values;
    for (const CWKXMLData::CEntry* pEntry : rList) {
        Values.push_back(pEntry->m_Value);
    }
    return Values;
}

// --- the whole document

TEST(CWKXMLDataTest, StartsEmptyWithDefaults) {
    CWKXMLData Data;
    EXPECT_TRUE(Data.IsEmpty());
    EXPECT_FALSE(Data.HasRoot());
    EXPECT_EQ(Data.GetVersion(), "1.0");
    EXPECT_EQ(Data.GetEncoding(), "UTF-8");
    EXPECT_EQ(Data.GetLastError(), "");
}

TEST(CWKXMLDataTest, ReadsASettingsDocument) {
    CDocument Document(
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\r\n"
        "<Corvane>\r\n"
        "\t<system_falconet IgnoreOutOfLock=\"1\" Ratio=\"-3x\">\r\n"
        "\t\t<panel colour=\"light grey\" size=\"800x600\"/>\r\n"
        "\t\tsome text\r\n"
        "\t</system_falconet>\r\n"
        "</Corvane>\r\n");
    CNode* const pSystem = Document.Get().FindNodeByPath("system_falconet", "\\");
    ASSERT_THAT(pSystem, NotNull());
    EXPECT_EQ(CWKXMLData::GetEntryInt(pSystem, "IgnoreOutOfLock", 0), 1);
    EXPECT_EQ(CWKXMLData::GetEntryInt(pSystem, "ratio", 0), -3);
    EXPECT_EQ(pSystem->m_Value, "some text");
    EXPECT_THAT(NamesOf(pSystem->m_Sections), ElementsAre("panel"));
    ASSERT_THAT(pSystem->m_pParent, NotNull());
    EXPECT_EQ(pSystem->m_pParent->m_Name, "Corvane");
    EXPECT_THAT(pSystem->m_pParent->m_pParent, IsNull());
    EXPECT_EQ(Document.Get().GetEncoding(), "ISO-8859-1");
}

TEST(CWKXMLDataTest, AnEmptyTextHasNoData) {
    CWKXMLData Data;
    EXPECT_FALSE(Data.ParseString(""));
    EXPECT_EQ(Data.GetLastError(), "No data to parse.");
    EXPECT_FALSE(Data.ParseString(" \r\n\t"));
    EXPECT_EQ(Data.GetLastError(), "No data to parse.");
}

// Text behind the last tag is no token, and without a tag there is no other.
TEST(CWKXMLDataTest, ATextWithoutTagsHasNoData) {
    CWKXMLData Data;
    EXPECT_FALSE(Data.ParseString("just text"));
    EXPECT_EQ(Data.GetLastError(), "No data to parse.");
}

TEST(CWKXMLDataTest, AMissingClosingTagIsAnError) {
    EXPECT_EQ(ErrorOf("<a>"), "Missing closing tag or invalid end of file.");
    EXPECT_EQ(ErrorOf("<a><b></b>"), "Missing closing tag or invalid end of file.");
}

TEST(CWKXMLDataTest, AClosingTagThatDiffersNamesTheTokenAndTheRoot) {
    EXPECT_EQ(ErrorOf("<a><b></c></a>"), "Unexpected token '</c>' at node 'a'.");
    EXPECT_EQ(ErrorOf("<a></A>"), "Unexpected token '</A>' at node 'a'.");
}

TEST(CWKXMLDataTest, ASecondRootIsAnUnexpectedToken) {
    EXPECT_EQ(ErrorOf("<a></a><b></b>"), "Unexpected token '<b>' at node 'a'.");
    EXPECT_EQ(ErrorOf("<a></a><b x=\"1\"></b>"), "Unexpected token '<b x=\"1\">' at node 'a'.");
}

TEST(CWKXMLDataTest, TextTwiceInAnElementIsAnUnexpectedToken) {
    EXPECT_EQ(ErrorOf("<a>one<b></b>two</a>"), "Unexpected token 'two' at node 'a'.");
}

TEST(CWKXMLDataTest, TextBeforeTheRootIsAnUnexpectedTokenWithoutANode) {
    EXPECT_EQ(ErrorOf("text<a></a>"), "Unexpected token 'text'.");
}

TEST(CWKXMLDataTest, TextBehindTheLastTagIsDropped) {
    EXPECT_EQ(ErrorOf("<a></a>text"), "");
}

TEST(CWKXMLDataTest, ASectionOutsideTheRootIsAnUnexpectedToken) {
    EXPECT_EQ(ErrorOf("<s/>"), "Unexpected token '<s/>'.");
    EXPECT_EQ(ErrorOf("<s x=\"1\"/>"), "Unexpected token '<s x=\"1\"/>'.");
    EXPECT_EQ(ErrorOf("<a></a><s/>"), "Unexpected token '<s/>' at node 'a'.");
}

TEST(CWKXMLDataTest, AnElementWithoutItsNameIsAnUnexpectedToken) {
    EXPECT_EQ(ErrorOf("<a=\"1\"></a>"), "Unexpected token '<a=\"1\">'.");
    EXPECT_EQ(ErrorOf("<a><b=\"1\"/></a>"), "Unexpected token '<b=\"1\"/>' at node 'a'.");
}

TEST(CWKXMLDataTest, ALoadedObjectTakesNoSecondDocument) {
    CWKXMLData Data;
    ASSERT_TRUE(Data.ParseString("<a></a>"));
    EXPECT_FALSE(Data.ParseString("<b></b>"));
    EXPECT_EQ(Data.GetLastError(), "");
    EXPECT_THAT(Data.FindNode("a"), NotNull());
    Data.DeleteRoot();
    EXPECT_TRUE(Data.IsEmpty());
    EXPECT_TRUE(Data.ParseString("<b></b>"));
    EXPECT_THAT(Data.FindNode("b"), NotNull());
    EXPECT_THAT(Data.FindNode("a"), IsNull());
}

TEST(CWKXMLDataTest, AFailedParseLeavesTheObjectReadyForAnother) {
    CWKXMLData Data;
    EXPECT_FALSE(Data.ParseString("<a><b></a>"));
    EXPECT_TRUE(Data.IsEmpty());
    EXPECT_TRUE(Data.ParseString("<a></a>"));
}

// --- header

TEST(CWKXMLDataTest, TheHeaderGivesVersionAndEncoding) {
    CWKXMLData Data;
    ASSERT_TRUE(Data.ParseString("<?xml version=\"1.1\" encoding=\"latin1\" standalone=\"yes\"?><a></a>"));
    EXPECT_EQ(Data.GetVersion(), "1.1");
    EXPECT_EQ(Data.GetEncoding(), "latin1");
}

TEST(CWKXMLDataTest, AnEmptyEncodingBecomesUtf8) {
    CWKXMLData Data;
    ASSERT_TRUE(Data.ParseString("<?xml version=\"1.0\" encoding=\"\"?><a></a>"));
    EXPECT_EQ(Data.GetEncoding(), "UTF-8");
}

TEST(CWKXMLDataTest, AHeaderWithNothingBehindItIsIrregular) {
    EXPECT_EQ(ErrorOf(""), "Irregular xml header or missing end tag.");
    EXPECT_EQ(ErrorOf("text"), "Irregular xml header or missing end tag.");
}

TEST(CWKXMLDataTest, ADocumentWithoutHeaderIsAcceptedIfItEndsWithItsRoot) {
    CWKXMLData Data;
    ASSERT_TRUE(Data.ParseString("<?xml version=\"2.0\" encoding=\"x\"?><a></a>"));
    Data.DeleteRoot();
    ASSERT_TRUE(Data.ParseString(" \n<a>text</a>\n"));
    EXPECT_EQ(Data.GetVersion(), "1.0");
    EXPECT_EQ(Data.GetEncoding(), "UTF-8");
}

TEST(CWKXMLDataTest, ADocumentWithoutHeaderIsIrregularOtherwise) {
    // The second holds attributes in its root, which its closing tag doesn't begin with; so do comments.
    for (const char* const pText :
         {"<a></b>", "<a x=\"1\"></a>", "<!-- c --><a></a>", "<a/>", "<></>", "text<a></a>"}) {
        CWKXMLData Data;
        EXPECT_FALSE(Data.ParseString(pText)) << pText;
        EXPECT_EQ(Data.GetLastError(), "Irregular xml header or missing end tag.") << pText;
    }
}

// The last tag need only begin with the root's name to pass the header; the body then finds the difference.
TEST(CWKXMLDataTest, ALongerLastTagPassesTheHeaderAndFailsInTheBody) {
    CWKXMLData Data;
    EXPECT_FALSE(Data.ParseString("<a></ab>"));
    EXPECT_EQ(Data.GetLastError(), "Unexpected token '</ab>' at node 'a'.");
}

TEST(CWKXMLDataTest, CommentsAndFurtherHeadersInFrontOfTheRootAreSkipped) {
    CDocument Document(std::string(HEADER) + "<!-- one --><?xml again?><!-- two\nlines --><a></a>");
    EXPECT_THAT(Document.Root(), NotNull());
}

TEST(CWKXMLDataTest, ADocumentOfNothingButCommentsIsASuccessWithoutATree) {
    CWKXMLData Data;
    EXPECT_TRUE(Data.ParseString(std::string(HEADER) + "<!-- nothing -->"));
    EXPECT_TRUE(Data.IsEmpty());
}

TEST(CWKXMLDataTest, ACommentInTheBodyEndsInAnError) {
    EXPECT_EQ(ErrorOf("<a><!-- c --></a>"), "Unexpected token '</a>' at node 'a'.");
    EXPECT_EQ(ErrorOf("<a></a><!-- c -->"), "Missing closing tag or invalid end of file.");
}

// --- tokens

TEST(CWKXMLDataTest, TabsAndLineEndsCountAsBlanksAndCarriageReturnsNotAtAll) {
    CDocument Document("<a>\r\n\t<b\tx=\"1\"\n\ty=\"two\nlines\"></b>te\rxt\nmore </a>");
    ASSERT_THAT(Document.Find("b"), NotNull());
    EXPECT_THAT(NamesOf(Document.Find("b")->m_Entries), ElementsAre("x", "y"));
    EXPECT_EQ(CWKXMLData::GetEntry(Document.Find("b"), "y", ""), "two lines");
    EXPECT_EQ(Document.Root()->m_Value, "text more");
}

TEST(CWKXMLDataTest, TagCharactersInQuotesAreOrdinary) {
    CDocument Document("<a><b x=\"1 < 2 > 0\"></b></a>");
    EXPECT_EQ(CWKXMLData::GetEntry(Document.Find("b"), "x", ""), "1 < 2 > 0");
}

// The quote in the text opens; the tags up to the next quote are text.
TEST(CWKXMLDataTest, QuotesCountInTextsToo) {
    CDocument Document("<a>say \"<b>\" twice</a>");
    EXPECT_EQ(Document.Root()->m_Value, "say \"<b>\" twice");
    EXPECT_THAT(Document.Find("b"), IsNull());
}

TEST(CWKXMLDataTest, ATagThatIsNeverClosedIsDropped) {
    EXPECT_EQ(ErrorOf("<a></a><b"), "");
}

// --- elements

TEST(CWKXMLDataTest, AnEmptyElementWithTwoAttributesIsASectionWithTwoEntries) {
    CDocument Document("<a><s one=\"1\" two=\"a blank\"/></a>");
    ASSERT_EQ(Document.Root()->m_Sections.GetCount(), 1U);
    const CSection* const pSection = Document.Root()->m_Sections.GetHead();
    EXPECT_EQ(pSection->m_Name, "s");
    EXPECT_THAT(NamesOf(pSection->m_Entries), ElementsAre("one", "two"));
    EXPECT_THAT(ValuesOf(pSection->m_Entries), ElementsAre("1", "a blank"));
    EXPECT_TRUE(Document.Root()->m_Children.IsEmpty());
}

TEST(CWKXMLDataTest, AnEmptyElementWithoutAttributesIsASection) {
    CDocument Document("<a><s/><t/></a>");
    EXPECT_THAT(NamesOf(Document.Root()->m_Sections), ElementsAre("s", "t"));
}

TEST(CWKXMLDataTest, NodesNestAndKeepTheirOrder) {
    CDocument Document("<a><b><d></d></b><c></c></a>");
    EXPECT_THAT(NamesOf(Document.Root()->m_Children), ElementsAre("b", "c"));
    EXPECT_EQ(Document.Find("d")->m_pParent, Document.Find("b"));
}

TEST(CWKXMLDataTest, BlanksAroundTheEqualsSignOfAnAttributeDontCountBeforeIt) {
    CDocument Document("<a><b x =\"1\"  y==\"2\" ></b></a>");
    EXPECT_THAT(NamesOf(Document.Find("b")->m_Entries), ElementsAre("x", "y"));
    EXPECT_THAT(ValuesOf(Document.Find("b")->m_Entries), ElementsAre("1", "2"));
}

TEST(CWKXMLDataTest, WhatIsLeftOverBehindTheLastQuoteIsIgnored) {
    CDocument Document("<a><b x=\"1\" junk></b><s y=\"2\" more/></a>");
    EXPECT_THAT(NamesOf(Document.Find("b")->m_Entries), ElementsAre("x"));
    EXPECT_THAT(NamesOf(Document.Root()->m_Sections.GetHead()->m_Entries), ElementsAre("y"));
}

TEST(CWKXMLDataTest, AnEndMarkInsideAValueMakesASection) {
    CDocument Document("<a><s x=\"/>\"></a>");
    ASSERT_THAT(NamesOf(Document.Root()->m_Sections), ElementsAre("s"));
    EXPECT_THAT(ValuesOf(Document.Root()->m_Sections.GetHead()->m_Entries), ElementsAre("/>"));
}

TEST(CWKXMLDataTest, ANodeNameWithABlankIsStoredWithAnUnderscoreAndClosedAsWritten) {
    CDocument Document("<a><b c></b c></a>");
    EXPECT_THAT(NamesOf(Document.Root()->m_Children), ElementsAre("b_c"));
    EXPECT_EQ(ErrorOf("<a><b c></b_c></a>"), "Unexpected token '</b_c>' at node 'a'.");
}

TEST(CWKXMLDataTest, ATextBeginningWithASlashLeavesTheElement) {
    CDocument Document("<?xml?><a><b>/<c></c></a>");
    EXPECT_THAT(NamesOf(Document.Root()->m_Children), ElementsAre("b", "c"));
    EXPECT_EQ(ErrorOf("<a>/</a>"), "Unexpected token '/' at node 'a'.");
    EXPECT_EQ(ErrorOf("/<a></a>"), "Unexpected token '/'.");
}

TEST(CWKXMLDataTest, TheOddClosingFormTakesTheMarkFromTheStack) {
    EXPECT_EQ(ErrorOf("<a><!>!>></a>"), "");
    EXPECT_EQ(ErrorOf("<a><!>!></a>"), "Unexpected token '!>' at node 'a'.");
}

TEST(CWKXMLDataTest, EntitiesAreNotDecoded) {
    CDocument Document("<a>1 &lt; 2</a>");
    EXPECT_EQ(Document.Root()->m_Value, "1 &lt; 2");
}

/// Nested nDepth deep: <n0><n1>...</n1></n0>.
std::string Nested(int nDepth) {
    std::string Text = HEADER;
    for (int i = 0; i < nDepth; ++i) {
        Text += "<n" + std::to_string(i) + ">";
    }
    for (int i = nDepth; i-- > 0;) {
        Text += "</n" + std::to_string(i) + ">";
    }
    return Text;
}

// The stack of names holds its limit of 256 and one more.
TEST(CWKXMLDataTest, ElementsNestAsDeepAsTheStackOfNamesAllows) {
    CWKXMLData Data;
    EXPECT_TRUE(Data.ParseString(Nested(257)));
    EXPECT_THAT(Data.FindNode("n256"), NotNull());
    Data.DeleteRoot();
    EXPECT_FALSE(Data.ParseString(Nested(258)));
    EXPECT_EQ(Data.GetLastError(), "Unexpected token '</n0>' at node 'n0'.");
}

// Deeper than any stack of a thread, were the tree destroyed or searched by recursion.
TEST(CWKXMLDataTest, AVeryDeepDocumentIsRefusedWithoutHarm) {
    CWKXMLData Data;
    EXPECT_FALSE(Data.ParseString(Nested(300000)));
    EXPECT_TRUE(Data.IsEmpty());
    ASSERT_TRUE(Data.CreateRoot("root"));
    CNode* pNode = nullptr;
    for (int i = 0; i < 300000; ++i) {
        pNode = Data.AddNode((pNode == nullptr) ? Data.FindNode("root") : pNode, "deep");
    }
    EXPECT_THAT(Data.FindNode("nowhere"), IsNull());
}

// --- building and searching

TEST(CWKXMLDataTest, CreateRootReplacesBlanksInTheName) {
    CWKXMLData Data;
    ASSERT_TRUE(Data.CreateRoot("my own root"));
    ASSERT_THAT(Data.FindNode("my_own_root"), NotNull());
    EXPECT_EQ(Data.FindNode("my_own_root")->m_Name, "my_own_root");
    EXPECT_TRUE(Data.FindNode("my_own_root")->m_Entries.IsEmpty());
}

TEST(CWKXMLDataTest, CreateRootFailsOverARoot) {
    CWKXMLData Data;
    ASSERT_TRUE(Data.CreateRoot("one"));
    EXPECT_FALSE(Data.CreateRoot("two"));
    EXPECT_THAT(Data.FindNode("two"), IsNull());
    Data.DeleteRoot();
    EXPECT_TRUE(Data.CreateRoot("two"));
}

TEST(CWKXMLDataTest, AddNodeWithoutAParentMakesTheRootOnce) {
    CWKXMLData Data;
    CNode* const pRoot = Data.AddNode(nullptr, "root");
    ASSERT_THAT(pRoot, NotNull());
    EXPECT_THAT(Data.AddNode(nullptr, "root"), IsNull());
    CNode* const pChild = Data.AddNode(pRoot, "child");
    EXPECT_EQ(pChild->m_pParent, pRoot);
    Data.AddNode(pRoot, "child");
    EXPECT_THAT(NamesOf(pRoot->m_Children), ElementsAre("child", "child"));
}

TEST(CWKXMLDataTest, FindNodeMatchesNamesThatDifferOnlyInCase) {
    CDocument Document("<a><System></System></a>");
    EXPECT_THAT(Document.Find("sYSTEM"), NotNull());
    EXPECT_EQ(Document.Find("A"), Document.Root());
    EXPECT_THAT(Document.Find("Sys"), IsNull());
}

TEST(CWKXMLDataTest, FindNodeGoesDepthFirst) {
    CDocument Document("<a><b><x>deep</x></b><x>shallow</x></a>");
    EXPECT_EQ(Document.Find("x")->m_Value, "deep");
}

TEST(CWKXMLDataTest, FindNodeLooksBelowItsStartOnlyThatIncluded) {
    CDocument Document("<a><b><x></x></b><c></c></a>");
    CNode* const pC = Document.Find("c");
    EXPECT_EQ(Document.Get().FindNode("c", pC), pC);
    EXPECT_THAT(Document.Get().FindNode("x", pC), IsNull());
}

TEST(CWKXMLDataTest, FindNodeFindsNothingWithoutADocument) {
    EXPECT_THAT(CWKXMLData().FindNode("a"), IsNull());
}

TEST(CWKXMLDataTest, FindNodeByPathGoesFromPartToPart) {
    CDocument Document("<a><x><y>in x</y></x><z><y>in z</y></z></a>");
    CWKXMLData& rData = Document.Get();
    EXPECT_EQ(rData.FindNodeByPath("z\\y", "\\")->m_Value, "in z");
    EXPECT_EQ(rData.FindNodeByPath("\\\\ A \\\\ z\\y \\", "\\")->m_Value, "in z");
    EXPECT_EQ(rData.FindNodeByPath("z/y\\", "\\/")->m_Value, "in z");
    EXPECT_EQ(rData.FindNodeByPath("y", "\\", Document.Find("z"))->m_Value, "in z");
    EXPECT_THAT(rData.FindNodeByPath("x\\z", "\\"), IsNull());
    EXPECT_THAT(rData.FindNodeByPath("nowhere\\x\\y", "\\"), IsNull());
}

TEST(CWKXMLDataTest, FindNodeByPathOfAnEmptyPathIsNothing) {
    CDocument Document("<a></a>");
    EXPECT_THAT(Document.Get().FindNodeByPath("", "\\"), IsNull());
    EXPECT_THAT(Document.Get().FindNodeByPath(" \\ \\", "\\"), IsNull());
}

// A part begins its search at the node found before, which may have that very name.
TEST(CWKXMLDataTest, FindNodeByPathFindsTheSameNodeForARepeatedName) {
    CDocument Document("<a><b><b>inner</b></b></a>");
    EXPECT_EQ(Document.Get().FindNodeByPath("b\\b", "\\"), Document.Find("b"));
}

TEST(CWKXMLDataTest, GetEntryGivesTheFirstAttributeOrTheDefault) {
    CDocument Document("<a><b Name=\"1\" name=\"2\"></b></a>");
    EXPECT_EQ(CWKXMLData::GetEntry(Document.Find("b"), "NAME", "none"), "1");
    EXPECT_EQ(CWKXMLData::GetEntry(Document.Find("b"), "Other", "none"), "none");
    EXPECT_EQ(CWKXMLData::GetEntry(nullptr, "Name", "none"), "none");
}

TEST(CWKXMLDataTest, GetEntryIntConvertsLeadingDigits) {
    CDocument Document("<a><b n=\"12 mm\" t=\"abc\" e=\"\" h=\"0x10\"></b></a>");
    CNode* const pNode = Document.Find("b");
    EXPECT_EQ(CWKXMLData::GetEntryInt(pNode, "n", 7), 12);
    EXPECT_EQ(CWKXMLData::GetEntryInt(pNode, "t", 7), 0);
    EXPECT_EQ(CWKXMLData::GetEntryInt(pNode, "e", 7), 0);
    EXPECT_EQ(CWKXMLData::GetEntryInt(pNode, "h", 7), 0);
    EXPECT_EQ(CWKXMLData::GetEntryInt(pNode, "missing", -7), -7);
    EXPECT_EQ(CWKXMLData::GetEntryInt(nullptr, "n", 7), 7);
}

// --- helpers

TEST(CStringStackTest, GivesBackTheNewestFirst) {
    CWKXMLData::CStringStack Stack;
    Stack.Push("one");
    Stack.Push("two");
    EXPECT_EQ(Stack.Pop(), "two");
    EXPECT_EQ(Stack.Pop(), "one");
    EXPECT_TRUE(Stack.IsEmpty());
}

TEST(CStringStackTest, AnEmptyStackGivesEmptyText) {
    CWKXMLData::CStringStack Stack;
    EXPECT_EQ(Stack.Pop(), "");
}

TEST(CStringStackTest, DropsTheOldestOnceTheCountExceedsTheLimit) {
    CWKXMLData::CStringStack Stack(2);
    for (const char* const pText : {"1", "2", "3", "4"}) {
        Stack.Push(pText);
    }
    EXPECT_EQ(Stack.GetCount(), 3U);
    EXPECT_EQ(Stack.Pop(), "4");
    EXPECT_EQ(Stack.Pop(), "3");
    EXPECT_EQ(Stack.Pop(), "2");
    EXPECT_EQ(Stack.Pop(), "");
}

/// Counts its destruction.
struct CCounted {
    explicit CCounted(int& rDestroyed) : m_rDestroyed(rDestroyed) {}
    ~CCounted() { ++m_rDestroyed; }
    int& m_rDestroyed;
};

TEST(CWKListTest, RemoveAllDestroysOnlyIfAskedTo) {
    int nDestroyed = 0;
    CWKList<CCounted> Owning;
    Owning.AddTail(new CCounted(nDestroyed));
    Owning.AddTail(new CCounted(nDestroyed));
    EXPECT_EQ(Owning.GetCount(), 2U);
    Owning.RemoveAll(true);
    EXPECT_EQ(nDestroyed, 2);
    EXPECT_TRUE(Owning.IsEmpty());

    CCounted Element(nDestroyed);
    CWKList<CCounted> Lent;
    Lent.AddTail(&Element);
    Lent.RemoveAll(false);
    EXPECT_EQ(nDestroyed, 2);
    EXPECT_TRUE(Lent.IsEmpty());
    EXPECT_THAT(Lent.GetHead(), IsNull());
    EXPECT_THAT(Lent.RemoveTail(), IsNull());
}

}  // namespace
