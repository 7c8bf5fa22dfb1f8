#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include "common/Contract.h"
#include "xml/XMLDOM.h"

namespace {

using MSXML2::CSmartPtr;
using MSXML2::IXMLDOMDocument;
using MSXML2::IXMLDOMNamedNodeMap;
using MSXML2::IXMLDOMNode;
using MSXML2::IXMLDOMNodeList;
using MSXML2::IXMLDOMRawNodeList;

std::string DataFile(const char* name) {
    const char* root = std::getenv("XUN_TEST_DATA");
    return std::string(root != nullptr ? root : "tests/data") + "/xml/" + name;
}

// A file in the temporary directory, removed at the end of the test.
class TempFile {
  public:
    explicit TempFile(const std::string& content) {
        char name[] = "/tmp/xun_xml_XXXXXX";
        const int fd = mkstemp(name);
        if (fd >= 0)
            close(fd);
        m_path = name;
        std::ofstream out(m_path, std::ios::binary);
        out << content;
    }
    ~TempFile() { std::remove(m_path.c_str()); }
    const std::string& Path() const { return m_path; }

  private:
    std::string m_path;
};

// The value of an attribute of a node, through the property members.
std::string Attr(CSmartPtr<IXMLDOMNode> node, const char* name) {
    CString value = node->attributes->getNamedItem(CString(name))->text;
    return value.GetString();
}

// The Ident attributes of every node of a list.
std::vector<std::string> Idents(CSmartPtr<IXMLDOMNodeList> list) {
    std::vector<std::string> idents;
    const long count = list->length;
    for (long i = 0; i < count; ++i)
        idents.push_back(Attr(list->item[i], "Ident"));
    return idents;
}

using Strings = std::vector<std::string>;

class XmlDom : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { xercesc::XMLPlatformUtils::Initialize(); }

    // A document loaded from a fixture; the load must succeed.
    static CSmartPtr<IXMLDOMDocument> Load(const char* name) {
        CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
        EXPECT_TRUE(doc->load(CString(DataFile(name).c_str()))) << name;
        return doc;
    }

    // The group of groups.xml with the given Id.
    static CSmartPtr<IXMLDOMNode> GroupById(IXMLDOMDocument& doc, const char* id) {
        std::string path = std::string("//Group[@Id=\"") + id + "\"]";
        return doc.selectSingleNode(CString(path.c_str()));
    }
};

using XmlDomDeathTest = XmlDom;

// --- document and load ------------------------------------------------------

TEST_F(XmlDom, NewDocumentHasNoDocumentAndFlagsFalse) {
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    EXPECT_EQ(doc->_smart_ptr_refcount, 1);
    EXPECT_FALSE(doc->m_bLoadOption1);
    EXPECT_FALSE(doc->m_bLoadOption2);
    EXPECT_FALSE(doc->m_bLoadOption3);
    EXPECT_EQ(doc->m_pDoc, nullptr);
    EXPECT_FALSE(doc->selectSingleNode(CString("//Group")));
}

TEST_F(XmlDom, LoadSetsValidationAndNamespaces) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    EXPECT_NE(doc->m_pDoc, nullptr);
    EXPECT_EQ(doc->m_parser.getValidationScheme(), xercesc::XercesDOMParser::Val_Always);
    EXPECT_TRUE(doc->m_parser.getDoNamespaces());
}

TEST_F(XmlDom, DocumentWithoutGrammarLoadsSilently) {
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    doc->m_bLoadOption2 = true;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const bool loaded = doc->load(CString(DataFile("groups.xml").c_str()));
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(loaded);
    EXPECT_EQ(out, "");
    EXPECT_EQ(err, "");
    EXPECT_TRUE(doc->selectSingleNode(CString("//Group[@Name=\"Units\"]")));
}

TEST_F(XmlDom, MissingFileFailsSilently) {
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const bool loaded = doc->load(CString(DataFile("does_not_exist.xml").c_str()));
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(loaded);
    EXPECT_EQ(out, "");
    EXPECT_EQ(err, "");
    EXPECT_EQ(doc->m_pDoc, nullptr);
    EXPECT_FALSE(doc->selectSingleNode(CString("//Group")));
}

TEST_F(XmlDom, MalformedFileFailsSilently) {
    for (const char* name :
         {"malformed.xml", "trailing_element.xml", "empty.xml", "no_root.xml", "binary.xml"}) {
        SCOPED_TRACE(name);
        CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const bool loaded = doc->load(CString(DataFile(name).c_str()));
        const std::string out = testing::internal::GetCapturedStdout();
        const std::string err = testing::internal::GetCapturedStderr();
        EXPECT_FALSE(loaded);
        EXPECT_EQ(out, "");
        EXPECT_EQ(err, "");
        EXPECT_EQ(doc->m_pDoc, nullptr);
        EXPECT_FALSE(doc->selectSingleNode(CString("//Group")));
    }
}

TEST_F(XmlDom, EmptyNameAndDirectoryFail) {
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    EXPECT_FALSE(doc->load(CString("")));
    EXPECT_FALSE(doc->load(CString(DataFile("").c_str())));
    EXPECT_FALSE(doc->load(CString("/")));
    EXPECT_EQ(doc->m_pDoc, nullptr);
}

TEST_F(XmlDom, EntityExpansionIsBounded) {
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    EXPECT_FALSE(doc->load(CString(DataFile("entity_bomb.xml").c_str())));
    EXPECT_EQ(doc->m_pDoc, nullptr);
    EXPECT_EQ(doc->LoadFailure(), IXMLDOMDocument::Failure::Bound);
    EXPECT_EQ(std::string(doc->FirstError().GetString()),
              "the document expands more than 50000 entity references, the limit");
}

// Why a load fails: the file cannot be read, it is no XML, or it passes a
// bound; the next successful load clears it.
TEST_F(XmlDom, LoadFailureSaysWhy) {
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    EXPECT_FALSE(doc->load(CString("/dev/null/none.xml")));
    EXPECT_EQ(doc->LoadFailure(), IXMLDOMDocument::Failure::Unreadable);
    EXPECT_EQ(std::string(doc->FirstError().GetString()),
              "the file cannot be read (Not a directory)");
    EXPECT_FALSE(doc->load(CString("/dev/null")));
    EXPECT_EQ(doc->LoadFailure(), IXMLDOMDocument::Failure::Unreadable);
    EXPECT_EQ(std::string(doc->FirstError().GetString()),
              "the file cannot be read (a character device, not a regular file)");
    EXPECT_FALSE(doc->load(CString(DataFile("malformed.xml").c_str())));
    EXPECT_EQ(doc->LoadFailure(), IXMLDOMDocument::Failure::NotWellFormed);
    EXPECT_NE(doc->FirstErrorLine(), 0);
    std::string deep;
    for (unsigned i = 0; i <= xun::contract::kXmlMaxDepth; ++i)
        deep += "<a>";
    for (unsigned i = 0; i <= xun::contract::kXmlMaxDepth; ++i)
        deep += "</a>";
    TempFile file(deep);
    EXPECT_FALSE(doc->load(CString(file.Path().c_str())));
    EXPECT_EQ(doc->LoadFailure(), IXMLDOMDocument::Failure::Bound);
    EXPECT_EQ(std::string(doc->FirstError().GetString()),
              "element 'a' is nested 257 levels deep; the limit is 256");
    EXPECT_EQ(doc->FirstErrorLine(), 1);
    EXPECT_TRUE(doc->load(CString(DataFile("groups.xml").c_str())));
    EXPECT_EQ(doc->LoadFailure(), IXMLDOMDocument::Failure::None);
    EXPECT_STREQ(doc->FirstError().GetString(), "");
}

// A file: URL names a local file (its %xx escapes decoded); the file is read
// like a path.
TEST_F(XmlDom, FileUrlOfTheDocumentIsRead) {
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    const std::string path = DataFile("groups.xml");
    ASSERT_EQ(path[0], '/');
    EXPECT_TRUE(doc->load(CString(("file://" + path).c_str())));
    std::string escaped = "file://";
    for (char c : path)
        escaped += c == 'g' ? std::string("%67") : std::string(1, c);
    EXPECT_TRUE(doc->load(CString(escaped.c_str())));
}

TEST_F(XmlDom, DocumentWithDtdLoadsWithItsDefaults) {
    CSmartPtr<IXMLDOMDocument> doc = Load("with_dtd.xml");
    CSmartPtr<IXMLDOMNode> group = doc->selectSingleNode(CString("//Group[@Name=\"Units\"]"));
    ASSERT_TRUE(group);
    CSmartPtr<IXMLDOMNodeList> rows = group->selectNodes(CString("Rows/R"));
    ASSERT_EQ(rows->getlength(), 2);
    EXPECT_EQ(Attr(rows->Getitem(0), "Ident"), "m");
    // A default value that the grammar declares.
    EXPECT_EQ(Attr(rows->Getitem(0), "Desc"), "default description");
    // An entity that the grammar declares, expanded in the value.
    EXPECT_EQ(Attr(rows->Getitem(1), "Desc"), "kilometer");
}

TEST_F(XmlDom, ValidityErrorsDoNotFailTheLoad) {
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    testing::internal::CaptureStderr();
    const bool loaded = doc->load(CString(DataFile("invalid_against_dtd.xml").c_str()));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(loaded);
    EXPECT_TRUE(doc->selectSingleNode(CString("//Unexpected")));
}

TEST_F(XmlDom, SecondLoadKeepsTheFirstDocumentAlive) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> first = GroupById(*doc, "g3");
    ASSERT_TRUE(first);
    const xercesc::DOMDocument* firstDoc = doc->m_pDoc;
    ASSERT_TRUE(doc->load(CString(DataFile("second.xml").c_str())));
    EXPECT_NE(doc->m_pDoc, firstDoc);
    // Wrappers of the first document still read it.
    EXPECT_EQ(Attr(first, "Name"), "Units");
    EXPECT_EQ(Idents(first->selectNodes(CString("Rows/R"))), (Strings{"m", "km", "s"}));
    // Selections now search the second document.
    CSmartPtr<IXMLDOMNode> second = doc->selectSingleNode(CString("//Group[@Name=\"Units\"]"));
    ASSERT_TRUE(second);
    EXPECT_EQ(Attr(second, "Id"), "second");
}

TEST_F(XmlDom, FailedLoadAfterASuccessfulOneLeavesNoDocument) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> kept = GroupById(*doc, "g1");
    ASSERT_TRUE(kept);
    EXPECT_FALSE(doc->load(CString(DataFile("malformed.xml").c_str())));
    EXPECT_EQ(doc->m_pDoc, nullptr);
    EXPECT_FALSE(doc->selectSingleNode(CString("//Group")));
    EXPECT_EQ(Attr(kept, "Name"), "Items");
    // And a later load works again.
    EXPECT_TRUE(doc->load(CString(DataFile("second.xml").c_str())));
    EXPECT_TRUE(doc->selectSingleNode(CString("//Group")));
}

TEST_F(XmlDom, SameFileLoadedTwice) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    ASSERT_TRUE(doc->load(CString(DataFile("groups.xml").c_str())));
    EXPECT_EQ(Attr(doc->selectSingleNode(CString("//Group[@Name=\"Units\"]")), "Id"), "g3");
}

// --- selectSingleNode -------------------------------------------------------

TEST_F(XmlDom, FirstGroupWhoseFirstMatchingAttributeIsNameUnits) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    // g1 has Name=Items; g2's first matching attribute is Kind (value Units);
    // g3, nested in Section, is the first that matches.
    CSmartPtr<IXMLDOMNode> units = doc->selectSingleNode(CString("//Group[@Name=\"Units\"]"));
    ASSERT_TRUE(units);
    EXPECT_EQ(Attr(units, "Id"), "g3");
    EXPECT_EQ(Attr(doc->selectSingleNode(CString("//Group[@Name=\"Items\"]")), "Id"), "g1");
    EXPECT_EQ(Attr(doc->selectSingleNode(CString("//Group[@Name=\"Filters\"]")), "Id"), "g5");
}

TEST_F(XmlDom, PathStructurePlaysNoPart) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    for (const char* path : {"Group[@Name=\"Units\"]", "/Setup/Group[@Name=\"Units\"]",
                             "Nowhere/Group[@Name=\"Units\"]", "//Group[1][@Name=\"Units\"]"}) {
        SCOPED_TRACE(path);
        CSmartPtr<IXMLDOMNode> node = doc->selectSingleNode(CString(path));
        ASSERT_TRUE(node);
        EXPECT_EQ(Attr(node, "Id"), "g3");
    }
    // Without a predicate: the first element of that name at any depth.
    EXPECT_EQ(Attr(doc->selectSingleNode(CString("//Group")), "Id"), "g1");
    EXPECT_EQ(Attr(doc->selectSingleNode(CString("Rows/R")), "Ident"), "ItemA");
}

TEST_F(XmlDom, NoMatchGivesANullHolder) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    EXPECT_FALSE(doc->selectSingleNode(CString("//Group[@Name=\"Nothing\"]")));
    EXPECT_FALSE(doc->selectSingleNode(CString("//Missing")));
    EXPECT_FALSE(doc->selectSingleNode(CString("//group")));
    EXPECT_FALSE(doc->selectSingleNode(CString("")));
    EXPECT_FALSE(doc->selectSingleNode(CString("//*")));
    // A name without a value never matches an element that has attributes.
    EXPECT_FALSE(doc->selectSingleNode(CString("//Group[@Name]")));
    EXPECT_FALSE(doc->selectSingleNode(CString("//Group[@Id]")));
}

TEST_F(XmlDom, ValueWithoutNameNeverMatches) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    // Without a name the name test holds from the start, so the attribute
    // walk never runs and the value test stays false.
    EXPECT_FALSE(doc->selectSingleNode(CString("//Group[\"Units\"]")));
    EXPECT_FALSE(doc->selectSingleNode(CString("//Group[@*=\"Units\"]")));
    EXPECT_FALSE(doc->selectSingleNode(CString("//Section[\"Units\"]")));
}

TEST_F(XmlDom, AttributeOrderIsTheMapsOrder) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    // g6 is written Zone="Units" Name="Units", but the parser's map orders by
    // name, so Name comes first and decides: g6 would match as well. Only
    // g3 is selected, being first in document order; selectNodes shows g6.
    CSmartPtr<IXMLDOMNode> setup = doc->selectSingleNode(CString("//Setup"));
    ASSERT_TRUE(setup);
    CSmartPtr<IXMLDOMNodeList> groups = setup->selectNodes(CString("Group[@Name=\"Units\"]"));
    std::vector<std::string> ids;
    for (long i = 0; i < groups->getlength(); ++i)
        ids.push_back(Attr(groups->Getitem(i), "Id"));
    EXPECT_EQ(ids, (Strings{"g4", "g6"}));
}

TEST_F(XmlDom, NamespacedNamesCompareAsWritten) {
    CSmartPtr<IXMLDOMDocument> doc = Load("namespaces.xml");
    EXPECT_EQ(Attr(doc->selectSingleNode(CString("//Group[@Name=\"Units\"]")), "Id"), "plain");
    EXPECT_EQ(Attr(doc->selectSingleNode(CString("//k:Group[@Name=\"Units\"]")), "Id"), "prefixed");
}

// --- checkNode --------------------------------------------------------------

TEST_F(XmlDom, CheckNodeRules) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> g2 = GroupById(*doc, "g2");
    CSmartPtr<IXMLDOMNode> g3 = GroupById(*doc, "g3");
    ASSERT_TRUE(g2 && g3);
    auto check = [](CSmartPtr<IXMLDOMNode> node, const char* tag, const char* name,
                    const char* value) {
        return IXMLDOMNode::checkNode(node->m_pNode, CString(tag), CString(name), CString(value));
    };
    EXPECT_TRUE(check(g3, "Group", "Name", "Units"));
    EXPECT_TRUE(check(g3, "*", "Name", "Units"));
    EXPECT_TRUE(check(g3, "Group", "", ""));
    EXPECT_TRUE(check(g3, "Group", "*", "*"));
    EXPECT_FALSE(check(g3, "group", "", ""));
    EXPECT_FALSE(check(g3, "", "", ""));
    // g2: attributes Id, Kind, Name in the map's order. Id matches neither;
    // Kind matches by value and decides alone.
    EXPECT_FALSE(check(g2, "Group", "Name", "Units"));
    EXPECT_TRUE(check(g2, "Group", "Kind", "Units"));
    EXPECT_TRUE(check(g2, "Group", "Id", "g2"));
    EXPECT_FALSE(check(g2, "Group", "Id", "g3"));
    // Id matches by name with the wrong value: it decides, even though Kind
    // would match entirely.
    EXPECT_FALSE(check(g2, "Group", "Kind", "g2"));
    // A name without a value never matches an element with attributes.
    EXPECT_FALSE(check(g2, "Group", "Kind", ""));
    EXPECT_FALSE(check(g2, "Group", "Kind", "*"));
    // A value without a name never matches either.
    EXPECT_FALSE(check(g2, "Group", "", "Units"));
    EXPECT_FALSE(check(g2, "Group", "*", "g2"));
    EXPECT_FALSE(IXMLDOMNode::checkNode(nullptr, CString("*"), CString(), CString()));
}

TEST_F(XmlDom, CheckNodeOnElementsWithoutAttributesAndOtherNodes) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> section = doc->selectSingleNode(CString("//Section"));
    ASSERT_TRUE(section);
    EXPECT_TRUE(IXMLDOMNode::checkNode(section->m_pNode, CString("Section"), CString(), CString()));
    EXPECT_FALSE(
        IXMLDOMNode::checkNode(section->m_pNode, CString("Section"), CString("Name"), CString()));
    EXPECT_FALSE(IXMLDOMNode::checkNode(section->m_pNode, CString("Section"), CString("Name"),
                                        CString("Units")));
    // A text node has the name #text and no attribute map.
    xercesc::DOMNode* text = GroupById(*doc, "g5")->m_pNode->getFirstChild();
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(IXMLDOMNode::checkNode(text, CString("#text"), CString(), CString()));
    EXPECT_TRUE(IXMLDOMNode::checkNode(text, CString("*"), CString(), CString()));
    EXPECT_FALSE(IXMLDOMNode::checkNode(text, CString("*"), CString(), CString("Units")));
}

// --- selectNodes / addNodes -------------------------------------------------

TEST_F(XmlDom, RowsRIsRowsByRowsInDocumentOrder) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> units = doc->selectSingleNode(CString("//Group[@Name=\"Units\"]"));
    ASSERT_TRUE(units);
    CSmartPtr<IXMLDOMNodeList> rows = units->selectNodes(CString("Rows/R"));
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->_smart_ptr_refcount, 1);
    // Not "deep" (under Other) and not "direct" (no Rows parent).
    EXPECT_EQ(Idents(rows), (Strings{"m", "km", "s"}));
    EXPECT_EQ(rows->getlength(), 3);
    EXPECT_EQ(Attr(rows->Getitem(0), "KvId"), "1000");
    EXPECT_EQ(Attr(rows->Getitem(1), "KvId"), "1001");
}

TEST_F(XmlDom, OneLevelPerStep) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> units = GroupById(*doc, "g3");
    EXPECT_EQ(Idents(units->selectNodes(CString("R"))), (Strings{"direct"}));
    EXPECT_EQ(Idents(units->selectNodes(CString("Rows/Other/R"))), (Strings{"deep"}));
    EXPECT_EQ(units->selectNodes(CString("Rows"))->getlength(), 3);
    // The asterisk never becomes a step: "*/R" is the single step R.
    EXPECT_EQ(Idents(units->selectNodes(CString("*/R"))), (Strings{"direct"}));
    CSmartPtr<IXMLDOMNode> setup = doc->selectSingleNode(CString("//Setup"));
    EXPECT_EQ(Idents(setup->selectNodes(CString("Group/Rows/R"))),
              (Strings{"ItemA", "wrong", "later", "t1", "t2", "t4", "t3"}));
    EXPECT_EQ(setup->selectNodes(CString("Section/Group/Rows/R"))->getlength(), 3);
}

TEST_F(XmlDom, PredicateAppliesAtEveryStep) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> setup = doc->selectSingleNode(CString("//Setup"));
    // The predicate (Name=Items) applies to Group and then to Rows and R as
    // well; Rows has no attributes, so nothing passes the second step.
    EXPECT_EQ(setup->selectNodes(CString("Group[@Name=\"Items\"]/Rows/R"))->getlength(), 0);
    // GetTag counts every element type: in Group[@Id="g1"]/R the second step
    // asks for elements named Id.
    EXPECT_EQ(setup->selectNodes(CString("Group[@Id=\"g1\"]/R"))->getlength(), 0);
    // A value predicate without a name matches at no step.
    EXPECT_EQ(GroupById(*doc, "g3")->selectNodes(CString("Rows/R[\"m\"]"))->getlength(), 0);
    // A predicate meant for the last step applies to Rows as well, which has
    // no attributes here: nothing is found.
    EXPECT_EQ(GroupById(*doc, "g3")->selectNodes(CString("Rows/R[@Ident=\"m\"]"))->getlength(), 0);
    // Where every step carries the attribute, the predicate selects.
    EXPECT_EQ(Idents(GroupById(*doc, "g7")->selectNodes(CString("Rows/R[@Set=\"a\"]"))),
              (Strings{"t1", "t3"}));
}

TEST_F(XmlDom, NoMatchGivesAnEmptyList) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> units = GroupById(*doc, "g3");
    for (const char* path : {"Rows/Missing", "Missing/R", "", "//", "Rows/R/X"}) {
        SCOPED_TRACE(path);
        CSmartPtr<IXMLDOMNodeList> list = units->selectNodes(CString(path));
        ASSERT_TRUE(list);
        EXPECT_EQ(list->getlength(), 0);
        EXPECT_EQ(static_cast<long>(list->length), 0);
    }
    // A group whose Rows is empty.
    EXPECT_EQ(GroupById(*doc, "g5")->selectNodes(CString("Rows/R"))->getlength(), 0);
}

TEST_F(XmlDom, SelectNodesOnANodelessWrapperGivesAnEmptyList) {
    CSmartPtr<IXMLDOMNode> nothing(new IXMLDOMNode);
    CSmartPtr<IXMLDOMNodeList> list = nothing->selectNodes(CString("Rows/R"));
    ASSERT_TRUE(list);
    EXPECT_EQ(list->getlength(), 0);
}

TEST_F(XmlDom, AddNodesFromAGivenLevel) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> units = GroupById(*doc, "g3");
    CSmartPtr<IXMLDOMNode> firstRows = units->selectNodes(CString("Rows"))->Getitem(0);
    CXPath path(CString("Rows/R"));
    path.Parse();
    CSmartPtr<IXMLDOMNodeList> list(new IXMLDOMNodeList);
    // Level 1 asks for the R children of the node given.
    units->addNodes(&*list, &path, 1, firstRows->m_pNode);
    EXPECT_EQ(Idents(list), (Strings{"m", "km"}));
    // Appends to what the list holds.
    units->addNodes(&*list, &path, 0, units->m_pNode);
    EXPECT_EQ(Idents(list), (Strings{"m", "km", "m", "km", "s"}));
    // Levels outside the steps, a null node, list or path add nothing.
    units->addNodes(&*list, &path, 2, units->m_pNode);
    units->addNodes(&*list, &path, -1, units->m_pNode);
    units->addNodes(&*list, &path, 2147483647, units->m_pNode);
    units->addNodes(&*list, &path, 0, nullptr);
    units->addNodes(&*list, nullptr, 0, units->m_pNode);
    units->addNodes(nullptr, &path, 0, units->m_pNode);
    EXPECT_EQ(list->getlength(), 5);
    // An unparsed path has no steps.
    CXPath unparsed(CString("Rows/R"));
    units->addNodes(&*list, &unparsed, 0, units->m_pNode);
    EXPECT_EQ(list->getlength(), 5);
}

TEST_F(XmlDom, TextChildrenAreTestedByName) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNodeList> texts = GroupById(*doc, "g5")->selectNodes(CString("#text"));
    ASSERT_EQ(texts->getlength(), 1);
    EXPECT_EQ(std::string(CString(texts->item[0]->text).GetString()), "text of g5");
}

// --- attributes, text, lists ------------------------------------------------

TEST_F(XmlDom, AttributesAndText) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> row = GroupById(*doc, "g3")->selectNodes(CString("Rows/R"))->Getitem(0);
    CSmartPtr<IXMLDOMNamedNodeMap> map = row->getattributes();
    ASSERT_TRUE(map);
    ASSERT_NE(map->m_pMap, nullptr);
    EXPECT_EQ(map->m_pMap->getLength(), 4u);
    CSmartPtr<IXMLDOMNode> desc = map->getNamedItem(CString("Desc"));
    ASSERT_TRUE(desc);
    ASSERT_NE(desc->m_pNode, nullptr);
    EXPECT_STREQ(desc->gettext().GetString(), "meter");
    // A missing attribute: a wrapper without a node, whose text is empty.
    CSmartPtr<IXMLDOMNode> missing = map->getNamedItem(CString("Expr"));
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->m_pNode, nullptr);
    EXPECT_TRUE(missing->gettext().IsEmpty());
    // An empty attribute reads the same.
    CSmartPtr<IXMLDOMNode> empty = map->getNamedItem(CString("Empty"));
    EXPECT_NE(empty->m_pNode, nullptr);
    EXPECT_TRUE(empty->gettext().IsEmpty());
    // Names compare exactly.
    EXPECT_EQ(map->getNamedItem(CString("desc"))->m_pNode, nullptr);
    EXPECT_EQ(map->getNamedItem(CString("Des"))->m_pNode, nullptr);
    EXPECT_EQ(map->getNamedItem(CString(""))->m_pNode, nullptr);
}

TEST_F(XmlDom, EveryAccessMakesANewWrapper) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> a = GroupById(*doc, "g3");
    CSmartPtr<IXMLDOMNode> b = GroupById(*doc, "g3");
    EXPECT_NE(&*a, &*b);
    EXPECT_EQ(a->m_pNode, b->m_pNode);
    CSmartPtr<IXMLDOMNamedNodeMap> m1 = a->getattributes();
    CSmartPtr<IXMLDOMNamedNodeMap> m2 = a->getattributes();
    EXPECT_NE(&*m1, &*m2);
    EXPECT_EQ(m1->m_pMap, m2->m_pMap);
    EXPECT_EQ(m1->_smart_ptr_refcount, 1);
}

TEST_F(XmlDom, GetattributesOnATextNodeHasNoMap) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> text(new IXMLDOMNode(GroupById(*doc, "g5")->m_pNode->getFirstChild()));
    ASSERT_NE(text->m_pNode, nullptr);
    EXPECT_EQ(text->m_pNode->getNodeType(), xercesc::DOMNode::TEXT_NODE);
    CSmartPtr<IXMLDOMNamedNodeMap> map = text->getattributes();
    ASSERT_TRUE(map);
    EXPECT_EQ(map->m_pMap, nullptr);
    CSmartPtr<IXMLDOMNode> item = map->getNamedItem(CString("Name"));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->m_pNode, nullptr);
    EXPECT_TRUE(item->gettext().IsEmpty());
    EXPECT_STREQ(text->gettext().GetString(), "text of g5");
}

TEST_F(XmlDom, NodelessWrapper) {
    CSmartPtr<IXMLDOMNode> node(new IXMLDOMNode);
    EXPECT_EQ(node->m_pNode, nullptr);
    EXPECT_EQ(node->_smart_ptr_refcount, 1);
    CSmartPtr<IXMLDOMNamedNodeMap> map = node->getattributes();
    ASSERT_TRUE(map);
    EXPECT_EQ(map->m_pMap, nullptr);
    EXPECT_TRUE(node->gettext().IsEmpty());
    CString text = node->text;
    EXPECT_TRUE(text.IsEmpty());
}

TEST_F(XmlDom, ElementTextIsEmpty) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    // An element's parser value is null: the text is empty.
    EXPECT_TRUE(GroupById(*doc, "g5")->gettext().IsEmpty());
}

TEST_F(XmlDom, PropertyMembersReadThroughTheGetters) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> units = GroupById(*doc, "g3");
    CSmartPtr<IXMLDOMNamedNodeMap> map = units->attributes;
    ASSERT_TRUE(map);
    EXPECT_EQ(map->m_pMap, units->m_pNode->getAttributes());
    CString name = units->attributes->getNamedItem(CString("Name"))->text;
    EXPECT_STREQ(name.GetString(), "Units");
    CSmartPtr<IXMLDOMNodeList> rows = units->selectNodes(CString("Rows/R"));
    EXPECT_EQ(static_cast<long>(rows->length), 3);
    EXPECT_TRUE(rows->length > 2);
    IXMLDOMRawNodeList& raw = rows->item;
    EXPECT_EQ(&raw, &rows->getitem());
    EXPECT_EQ(rows->item[2]->m_pNode, raw.m_nodes[2]);
    CString ident = rows->item[1]->attributes->getNamedItem(CString("Ident"))->text;
    EXPECT_STREQ(ident.GetString(), "km");
    // The properties of a node are bound to that node, not to the class.
    CSmartPtr<IXMLDOMNode> other = GroupById(*doc, "g1");
    CString otherName = other->attributes->getNamedItem(CString("Name"))->text;
    EXPECT_STREQ(otherName.GetString(), "Items");
}

TEST_F(XmlDom, PropertyMembersAreSmall) {
    // One pointer each beside the data they stand for.
    EXPECT_LE(sizeof(IXMLDOMNode::CTextProperty), sizeof(void*));
    EXPECT_LE(sizeof(IXMLDOMNode::CAttributesProperty), sizeof(void*));
    EXPECT_LE(sizeof(IXMLDOMNodeList::CItemProperty), sizeof(void*));
    EXPECT_LE(sizeof(IXMLDOMNodeList::CLengthProperty), sizeof(void*));
}

TEST_F(XmlDom, NewListIsEmpty) {
    CSmartPtr<IXMLDOMNodeList> list(new IXMLDOMNodeList);
    EXPECT_EQ(list->getlength(), 0);
    EXPECT_EQ(static_cast<long>(list->length), 0);
    EXPECT_EQ(list->getitem().getlength(), 0);
}

TEST_F(XmlDom, RawListAddsAndIndexes) {
    CSmartPtr<IXMLDOMDocument> doc = Load("groups.xml");
    CSmartPtr<IXMLDOMNode> g1 = GroupById(*doc, "g1");
    CSmartPtr<IXMLDOMNode> g3 = GroupById(*doc, "g3");
    IXMLDOMRawNodeList raw;
    raw.addNode(g1->m_pNode);
    raw.addNode(g3->m_pNode);
    raw.addNode(g1->m_pNode);
    EXPECT_EQ(raw.getlength(), 3);
    EXPECT_EQ(raw[0]->m_pNode, g1->m_pNode);
    EXPECT_EQ(raw[1]->m_pNode, g3->m_pNode);
    EXPECT_EQ(raw[2]->m_pNode, g1->m_pNode);
    EXPECT_NE(&*raw[0], &*raw[2]);
    // Indexes outside the list give a wrapper without a node.
    EXPECT_EQ(raw[3]->m_pNode, nullptr);
    EXPECT_EQ(raw[-1]->m_pNode, nullptr);
    CSmartPtr<IXMLDOMNodeList> list(new IXMLDOMNodeList);
    list->m_rawList = raw;
    EXPECT_EQ(list->getlength(), 3);
    EXPECT_EQ(list->Getitem(1)->m_pNode, g3->m_pNode);
    EXPECT_EQ(list->Getitem(3)->m_pNode, nullptr);
    EXPECT_EQ(list->item[99]->m_pNode, nullptr);
    EXPECT_TRUE(CString(list->item[99]->text).IsEmpty());
}

TEST_F(XmlDom, Wide2cstr) {
    XMLCh* wide =
        xercesc::XMLString::transcode("Units;m/s", xercesc::XMLPlatformUtils::fgMemoryManager);
    EXPECT_STREQ(IXMLDOMNode::wide2cstr(wide).GetString(), "Units;m/s");
    xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(wide);
    const XMLCh empty[] = {0};
    EXPECT_TRUE(IXMLDOMNode::wide2cstr(empty).IsEmpty());
    EXPECT_TRUE(IXMLDOMNode::wide2cstr(nullptr).IsEmpty());
}

TEST_F(XmlDom, ManyRowsAreSelectedInOrder) {
    std::string xml = "<Setup><Group Name=\"Units\">";
    for (int r = 0; r < 3; ++r) {
        xml += "<Rows>";
        for (int i = 0; i < 5000; ++i)
            xml += "<R Ident=\"u" + std::to_string(r * 5000 + i) + "\"/>";
        xml += "</Rows>";
    }
    xml += "</Group></Setup>";
    TempFile file(xml);
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    ASSERT_TRUE(doc->load(CString(file.Path().c_str())));
    CSmartPtr<IXMLDOMNode> group = doc->selectSingleNode(CString("//Group[@Name=\"Units\"]"));
    ASSERT_TRUE(group);
    CSmartPtr<IXMLDOMNodeList> rows = group->selectNodes(CString("Rows/R"));
    ASSERT_EQ(rows->getlength(), 15000);
    EXPECT_EQ(Attr(rows->Getitem(0), "Ident"), "u0");
    EXPECT_EQ(Attr(rows->Getitem(5000), "Ident"), "u5000");
    EXPECT_EQ(Attr(rows->Getitem(14999), "Ident"), "u14999");
}

TEST_F(XmlDom, DeepDocumentAndLongPath) {
    // As deep as a document may be: b is at the limit.
    const int depth = static_cast<int>(xun::contract::kXmlMaxDepth) - 1;
    std::string xml;
    std::string path;
    for (int i = 0; i < depth; ++i) {
        xml += "<a>";
        if (i > 0)
            path += i > 1 ? "/a" : "a";
    }
    xml += "<b Name=\"x\"/>";
    for (int i = 0; i < depth; ++i)
        xml += "</a>";
    TempFile file(xml);
    CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
    ASSERT_TRUE(doc->load(CString(file.Path().c_str())));
    CSmartPtr<IXMLDOMNode> b = doc->selectSingleNode(CString("//b[@Name=\"x\"]"));
    ASSERT_TRUE(b);
    CSmartPtr<IXMLDOMNode> root = doc->selectSingleNode(CString("a"));
    ASSERT_TRUE(root);
    // depth - 1 steps of "a" below the root, then "b".
    CSmartPtr<IXMLDOMNodeList> found = root->selectNodes(CString((path + "/b").c_str()));
    ASSERT_EQ(found->getlength(), 1);
    EXPECT_EQ(found->Getitem(0)->m_pNode, b->m_pNode);
}

// Any file content loads or fails without a memory error and without output;
// a document that loads can be searched.
TEST_F(XmlDom, AnyContentIsSurvived) {
    std::string base;
    {
        std::ifstream in(DataFile("groups.xml"), std::ios::binary);
        base.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    ASSERT_FALSE(base.empty());
    std::mt19937 random(77);
    int loaded = 0;
    int failed = 0;
    for (int round = 0; round < 300; ++round) {
        std::string content;
        if (round % 3 == 0) {
            const size_t length = random() % 200;
            for (size_t i = 0; i < length; ++i)
                content.push_back(static_cast<char>(random() % 256));
        } else {
            content = base;
            const int edits = 1 + static_cast<int>(random() % 4);
            for (int e = 0; e < edits; ++e) {
                const size_t at = random() % content.size();
                switch (random() % 3) {
                case 0:
                    content[at] = static_cast<char>(random() % 256);
                    break;
                case 1:
                    content.erase(at, random() % 20);
                    break;
                default:
                    content.insert(at, 1, "<>&\"'/=![]\0\xff"[random() % 12]);
                    break;
                }
                if (content.empty())
                    content = "<";
            }
        }
        TempFile file(content);
        CSmartPtr<IXMLDOMDocument> doc(new IXMLDOMDocument);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const bool ok = doc->load(CString(file.Path().c_str()));
        CSmartPtr<IXMLDOMNode> units = doc->selectSingleNode(CString("//Group[@Name=\"Units\"]"));
        if (units)
            Idents(units->selectNodes(CString("Rows/R")));
        const std::string out = testing::internal::GetCapturedStdout();
        const std::string err = testing::internal::GetCapturedStderr();
        ASSERT_EQ(out, "");
        ASSERT_EQ(err, "");
        ASSERT_EQ(ok, doc->m_pDoc != nullptr);
        if (ok) {
            ++loaded;
        } else {
            ASSERT_FALSE(units);
            ++failed;
        }
    }
    // The mix holds both outcomes.
    EXPECT_GT(loaded, 0);
    EXPECT_GT(failed, 0);
}

// --- reference counting of the wrappers ---------------------------------------

TEST_F(XmlDomDeathTest, DeletingAHeldDocumentAborts) {
    EXPECT_DEATH(
        {
            // The holder itself is never destroyed: the process ends first.
            auto* doc = new CSmartPtr<IXMLDOMDocument>(new IXMLDOMDocument);
            delete &**doc;
        },
        "SmartPtr:[0-9]+: virtual MSXML2::CSmartPtrAble::~CSmartPtrAble\\(\\): Assertion "
        "`_smart_ptr_refcount == 0' failed\\.");
}

} // namespace
