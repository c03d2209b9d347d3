// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/tree/XML.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zlib.h>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MZLibStream.h"
#include "state/tree/MAttribute.h"
#include "state/tree/XMLScanner.h"
#include "tests/ErrorOf.h"

namespace
{
constexpr const char* Declaration = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

std::string ContentOf(const MMemoryStream& stream)
{
    const MDataBlock& block = stream.Block();
    return { reinterpret_cast<const char*>(block.Data()), static_cast<std::size_t>(block.Size()) };
}

std::string Written(const MAttribute& item, bool compact, const char* encoding = "utf-8")
{
    MMemoryStream stream;
    WriteXML(item, stream, compact, encoding);
    return ContentOf(stream);
}

void Read(MAttribute& item, const std::string& bytes)
{
    MMemoryStream stream = MMemoryStream::Borrow(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    ReadXML(item, stream);
}

std::string ErrorOf(const std::string& document)
{
    MAttribute item;
    try
    {
        Read(item, document);
    }
    catch (const MException& error)
    {
        return error.Message.ToUTF8();
    }
    return {};
}

// A tree in one line, whatever its XML looks like.
std::string Described(const MAttribute& item)
{
    std::string text = item.Name().ToUTF8() + "(";
    for (int index = 0; index < item.AttributeCount(); ++index)
        text += item.AttributeAt(index).key.ToUTF8() + "=" + item.AttributeAt(index).value.ToUTF8() + ";";
    text += item.Text().ToUTF8() + ")[";
    for (int index = 0; index < item.SubItemCount(); ++index)
        text += Described(item.SubItemAt(index));
    return text + "]";
}

std::string DescribedXML(const std::string& document)
{
    MAttribute item("before");
    Read(item, document);
    return Described(item);
}

TEST(XML, IsWrittenCompactByteForByte)
{
    MAttribute root("settings");
    root.SetAttribute("b", "1 < 2 & \"3\" > '4'\nend");
    root.SetAttribute("a", "");
    root.GetSubItem("Empty");
    MAttribute& child = root.GetSubItem("Child");
    child.SetText("text & more");
    child.GetSubItem("Grandchild").SetAttribute("x", MString(u"\u00E9"));
    root.GetSubItem("Last").SetAttribute("y", "2");
    EXPECT_EQ(Written(root, true),
              std::string(Declaration) +
                  "<settings a=\"\" b=\"1 &lt; 2 &amp; &quot;3&quot; &gt; &apos;4&apos;&#10;end\">"
                  "<Empty/>\n"
                  "<Child>text &amp; more<Grandchild x=\"\xC3\xA9\"/></Child>\n"
                  "<Last y=\"2\"/>\n"
                  "</settings>\n");
    EXPECT_EQ(Written(MAttribute("alone"), true), std::string(Declaration) + "<alone/>\n");
}

TEST(XML, IsWrittenIndented)
{
    MAttribute root("settings");
    root.SetAttribute("a", "1");
    MAttribute& child = root.GetSubItem("Child");
    // The line is broken at the first lone blank from the 60th character on.
    const std::string sixty(60, 'w');
    child.SetText(MString::Copy("short " + sixty + " next  two  " + sixty + " end"));
    child.GetSubItem("Leaf");
    EXPECT_EQ(Written(root, false), std::string(Declaration) +
                                        "<settings a=\"1\">\n"
                                        "\t<Child>\n"
                                        "\t\tshort " +
                                        sixty +
                                        "\n"
                                        "\t\tnext  two  " +
                                        sixty +
                                        "\n"
                                        "\t\tend\n"
                                        "\t\t<Leaf/>\n"
                                        "\t</Child>\n"
                                        "</settings>\n");
    EXPECT_EQ(DescribedXML(Written(root, false)), Described(root));
}

// Whatever stands in a name: it is refused, or it comes back.
TEST(XML, WritesOnlyNamesThatItReads)
{
    int refused = 0;
    for (int character = 0; character < 0x300; ++character)
        for (const char* rest : { "", "b" })
            for (const bool isKey : { false, true })
            {
                SCOPED_TRACE(testing::Message() << character << rest << isKey);
                MAttribute root("settings");
                const MString name = MString(static_cast<char16_t>(character)) + rest;
                if (isKey)
                    root.SetAttribute(name, "value");
                else
                    root.AddSubItem(name);
                for (const bool isCompact : { false, true })
                {
                    std::string document;
                    try
                    {
                        document = Written(root, isCompact);
                    }
                    catch (const MException& error)
                    {
                        EXPECT_NE(error.Message.Find("cannot"), -1);
                        ++refused;
                        continue;
                    }
                    EXPECT_EQ(DescribedXML(document), Described(root));
                }
            }
    EXPECT_LT(refused, 8 * 45);   // controls, the blank and a few signs
    MAttribute nameless("settings");
    nameless.AddSubItem("");
    EXPECT_THROW(Written(nameless, true), MException);
}

TEST(XML, IsReadByItsRules)
{
    const struct
    {
        const char* document;
        const char* tree;
    } cases[] = {
        { "<a/>", "a()[]" },
        { "  \n<?xml version=\"1.0\"?><!-- c --><a x = \"1\"\n\ty=\"2\" />\n<!-- d -->", "a(x=1;y=2;)[]" },
        { "<a>\n\t one\n\t\ttwo  three \n</a>", "a(one two  three)[]" },
        { "<a>one<b/>two</a>", "a(one two)[b()[]]" },
        { "<a>x<!-- <b> -->y</a>", "a(x y)[]" },
        { "<a><![CDATA[ <b> &amp; ]]></a>", "a( <b> &amp; )[]" },
        { "<a>&lt;&gt;&amp;&apos;&quot;&#10;&copy;&#65;&</a>", "a(<>&'\"\n&copy;&#65;&)[]" },
        { "<a x=\"line\nbreak > < / = !\"/>", "a(x=line\nbreak > < / = !;)[]" },
        { "<a x=\"1\" X=\"2\"/>", "a(x=2;)[]" },
        { "<a><B></b ></A>", "a()[B()[]]" },
        { "\xEF\xBB\xBF<a/>", "a()[]" },
        { "<?xml encoding='ISO-8859-2'?><a x=\"\xE9\xB1\">\xE8</a>", "a(x=\xC3\xA9\xC4\x85;\xC4\x8D)[]" },
        { "<?xml standalone=\"yes\"?><?php x ?><a/>", "a()[]" },
    };
    for (const auto& [document, tree] : cases)
        EXPECT_EQ(DescribedXML(document), tree) << document;
    EXPECT_EQ(DescribedXML(std::string("<a/>\0\0<", 7)), "a()[]");   // padded by a host
}

TEST(XML, SaysWhatIsWrongWithADocument)
{
    const struct
    {
        const char* document;
        const char* detail;
    } cases[] = {
        { "<a><!-- ", "No ending delimiter found." },
        { "<a><![CDATA[ ]]", "No ending delimiter found." },
        { "<a x=\"1", "No ending delimiter found." },
        { "<a x", "No ending delimiter found." },
        { "<a", "No ending delimiter found." },
        { "<a></a", "No ending delimiter found." },
        { "<a><b/>", "No ending delimiter found." },
        { "<?xml ", "No ending delimiter found." },
        { "<a></b>", "Invalid closing element name." },
        { "<a/></a>", "Invalid closing element name." },
        { "<a></a b>", "Invalid closing element syntax." },
        { "<a></>", "Invalid closing element syntax." },
        { "<>", "No element name found." },
        { "< a/>", "No element name found." },
        { "<\x98/>", "No element name found." },
        { "<a\xC0\xBC/>", "No element name found." },   // "<" in two bytes
        { "<a \xED\xA0\x80=\"1\"/>", "Invalid character found where attribute expected." },
        { "<!DOCTYPE a>", "Invalid special element sequence." },
        { "<a x>", "Invalid character found where attribute expected." },
        { "<a x y=\"1\">", "Invalid character found where attribute expected." },
        { "<a x=1>", "Invalid character found where attribute expected." },
        { "<a =\"1\">", "Special character found where attribute expected." },
        { "<a <b/>", "Special character found where attribute expected." },
        { "<a / >", "Invalid element finishing sequence." },
        { "<a/><b/>", "More than one root element." },
    };
    for (const auto& [document, detail] : cases)
        EXPECT_EQ(ErrorOf(document), "Invalid file contents. " + std::string(detail)) << document;
    for (const char* document : { "", "  \n", "<!-- only a comment -->", "<?xml version=\"1.0\"?>" })
        EXPECT_EQ(ErrorOf(document), "The XML does not contain any elements.") << document;
    for (const char* document : { "text", "<a/>text", "<![CDATA[x]]><a/>" })
        EXPECT_EQ(ErrorOf(document), "Text outside of any element.") << document;
    EXPECT_EQ(ErrorOf("<?xml encoding=\"ebcdic\"?><a/>"), "No codec found for encoding ebcdic.");
}

TEST(XML, LimitsWhatADocumentMayCost)
{
    const auto repeated = [](const char* text, int count)
    {
        std::string result;
        for (int index = 0; index < count; ++index)
            result += text;
        return result;
    };
    EXPECT_EQ(ErrorOf(repeated("<a>", 256) + repeated("</a>", 256)), "");
    EXPECT_EQ(ErrorOf(repeated("<a>", 257) + repeated("</a>", 257)),
              "Invalid file contents. Elements are nested too deeply.");
    EXPECT_EQ(ErrorOf("<a>" + repeated("<b/>", 1 << 18) + "</a>"),
              "Invalid file contents. Too many elements.");
    std::string attributes = "<a";
    for (int index = 0; index <= 4096; ++index)
        attributes += " k" + std::to_string(index) + "=\"\"";
    EXPECT_EQ(ErrorOf(attributes + "/>"), "Invalid file contents. Too many attributes.");

    // 65 MiB of blanks in some 64 KiB.
    MMemoryStream bomb;
    MZLibStream compressed(&bomb, MZLibStream::Direction::Compress);
    const std::string blanks(1 << 20, ' ');
    for (int index = 0; index < 65; ++index)
        compressed.Write(blanks.data(), 1 << 20);
    compressed.Write("<a/>", 4);
    compressed.Finish();
    bomb.Seek(0, MStream::Begin);
    MAttribute item;
    EXPECT_THROW(ReadCompressedXML(item, bomb), MException);
}

// Random trees that the reader can give back: text without blanks at its ends, no control characters.
class TreeMaker
{
public:
    explicit TreeMaker(unsigned seed) : random(seed) {}

    void Fill(MAttribute& item, int depth)
    {
        for (int count = Pick(5); count > 0; --count)
            item.SetAttribute(Name(), Text(" <>&'\"\n"));
        if (Pick(2) == 0)
            item.SetText("x" + Text(" <>&'\"\n") + "x");
        for (int count = depth < 4 ? Pick(4) : 0; count > 0; --count)
            Fill(item.AddSubItem(Name()), depth + 1);
    }

private:
    int Pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    MString Name() { return MString(u"n") + MString::FromInt(Pick(1000)); }
    MString Text(const std::string& special)
    {
        std::u16string text;
        for (int length = Pick(200); length > 0; --length)
        {
            const int kind = Pick(6);
            if (kind == 0)
                text += static_cast<char16_t>(
                    special[static_cast<std::size_t>(Pick(static_cast<int>(special.size())))]);
            else if (kind == 1)
                text += { char16_t{ 0xD83C }, char16_t{ 0xDFB5 } };
            else
                text += static_cast<char16_t>(kind == 2 ? 0x0100 + Pick(500) : 'a' + Pick(26));
        }
        return MString(text);
    }

    std::mt19937 random;
};

TEST(XML, GivesBackEveryTreeInEveryForm)
{
    for (unsigned seed = 1; seed <= 60; ++seed)
    {
        SCOPED_TRACE(seed);
        MAttribute root("root");
        TreeMaker(seed).Fill(root, 0);
        const std::string expected = Described(root);
        for (const char* encoding : { "utf-8", "utf-16" })
            for (const bool compact : { false, true })
                ASSERT_EQ(DescribedXML(Written(root, compact, encoding)), expected) << encoding << compact;
        MMemoryStream stream;
        stream.Write("head", 4);
        WriteCompressedXML(root, stream, "utf-8");
        stream.Seek(4, MStream::Begin);
        MAttribute back;
        ReadCompressedXML(back, stream);
        ASSERT_EQ(Described(back), expected);
    }
}

TEST(XML, IsCompressedAsAPlainZlibStreamOfItsCompactForm)
{
    MAttribute root("settings");
    root.SetAttribute("Bypass", "1");
    MMemoryStream stream;
    WriteCompressedXML(root, stream, "utf-8");
    const std::string bytes = ContentOf(stream);
    EXPECT_EQ(bytes.substr(0, 2), "\x78\xDA");
    std::string inflated(1000, '\0');
    uLongf size = 1000;
    ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(inflated.data()), &size,
                         reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size())),
              Z_OK);
    EXPECT_EQ(inflated.substr(0, size), Written(root, true));
}

TEST(XML, IsReadPlainWhereCompressedIsExpected)
{
    const std::string document = "head<a x=\"1\"/>";
    MMemoryStream stream = MMemoryStream::Borrow(document.data(), static_cast<std::int32_t>(document.size()));
    stream.Seek(4, MStream::Begin);
    MAttribute item;
    ReadCompressedXML(item, stream);
    EXPECT_EQ(Described(item), "a(x=1;)[]");
    stream.Seek(0, MStream::Begin);
    EXPECT_THROW(ReadCompressedXML(item, stream), MException);
}

TEST(XML, IsSavedWholeOrNotAtAll)
{
    const std::filesystem::path folder = std::filesystem::path(std::getenv("TONALIGN_TEST_FOLDER")) / "xml";
    std::filesystem::create_directories(folder);
    const MString path = MString::FromUTF8((folder / "tree.xml").string());
    MAttribute root("settings");
    root.GetSubItem("child").SetText("text");
    const auto saves = { std::function<void()>([&] { SaveXML(root, path, true, "utf-8"); }),
                         std::function<void()>([&] { SaveXML(root, path, false, "cp1250"); }),
                         std::function<void()>([&] { SaveCompressedXML(root, path, "utf-8"); }) };
    for (const auto& save : saves)
    {
        save();
        MAttribute back;
        LoadXML(back, path);
        EXPECT_EQ(Described(back), Described(root));
        // What fails in the middle leaves the file as it was.
        MAttribute& nameless = root.AddSubItem("");
        EXPECT_THROW(save(), MException);
        nameless.SetName("named");
        MAttribute still;
        LoadXML(still, path);
        EXPECT_EQ(Described(still), Described(back));
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}
}   // namespace

TEST(XML, RunningTextKeepsABlankForEachRunAndMayLeaveOutQuotationMarks)
{
    struct Listener : MTreeParser
    {
        void OnElement(const MString& name, const MArray<MAttributePair>& attributes, bool closing) override
        {
            heard += (closing ? "</" : "<") + name.ToUTF8();
            for (const MAttributePair& pair : attributes)
                heard += "|" + pair.key.ToUTF8() + "=" + pair.value.ToUTF8();
            heard += ">";
        }
        void OnText(const MString& text) override { heard += "[" + text.ToUTF8() + "]"; }
        std::string heard;
    };
    const auto heard = [](std::string_view text)
    {
        Listener listener;
        XMLScanner(text, listener, MarkUp::RunningText).Scan();
        return listener.heard;
    };
    EXPECT_EQ(heard(" a \t\n b <b> c</b> "), "[ a b ]<b>[ c]</b>[ ]");
    EXPECT_EQ(heard("<td width=100% a=\"x &lt; y\" b=1/2 c=&amp;><img n=0/>"),
              "<td|width=100%|a=x < y|b=1/2|c=&><img|n=0></img>");
    EXPECT_EQ(heard("&#10;<![CDATA[ 1  <\n2 ]]><?xml encoding=\"utf-16\"?>\xC3\xA9"),
              "[\n][ 1 < 2 ][\xC3\xA9]");
    EXPECT_EQ(heard(std::string_view("a\0b", 3)), "[a b]");
    for (const char* text : { "<td width=>", "<td width= >", "<td width" })
        EXPECT_NE(::ErrorOf([&] { heard(text); }), "") << text;
    EXPECT_EQ(::ErrorOf([&] { heard("<td width=1<b>"); }),
              "Invalid file contents. Special character found where attribute expected.");
    EXPECT_EQ(::ErrorOf([&] { heard("<td width=1"); }), "Invalid file contents. No ending delimiter found.");
}
