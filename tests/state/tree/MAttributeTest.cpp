// SPDX-License-Identifier: GPL-3.0-or-later
#include "state/tree/MAttribute.h"

#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/streams/MMemoryStream.h"
#include "foundation/streams/MZLibStream.h"
#include "tests/ErrorOf.h"

namespace
{
std::string KeysOf(const MAttribute& item)
{
    std::string keys;
    for (int index = 0; index < item.AttributeCount(); ++index)
        keys += item.AttributeAt(index).key.ToUTF8() + "=" + item.AttributeAt(index).value.ToUTF8() + " ";
    return keys;
}

TEST(MAttribute, BehavesLikeAMapOfKeysWithoutCase)
{
    constexpr unsigned Seed = 5;
    SCOPED_TRACE(Seed);
    std::mt19937 random(Seed);
    MAttribute item;
    std::map<std::string, std::string> expected;
    for (int round = 0; round < 3000; ++round)
    {
        const std::string key = "key" + std::to_string(random() % 60);
        const MString written = MString::FromUTF8(random() % 2 == 0 ? key : "K\xC3\x89Y" + key.substr(3));
        if (random() % 3 == 0)
        {
            item.RemoveAttribute(written);
            expected.erase(key);
        }
        else
        {
            item.SetAttribute(expected.contains(key) ? written : MString::Copy(key), MString::FromInt(round));
            expected[key] = std::to_string(round);
        }
        ASSERT_EQ(item.HasAttribute(written), expected.contains(key));
        ASSERT_EQ(item.GetAttribute(written, "none").ToUTF8(),
                  expected.contains(key) ? expected[key] : "none");
        ASSERT_EQ(item.AttributeCount(), static_cast<int>(expected.size()));
    }
    std::string keys;
    for (const auto& [key, value] : expected)
        keys += key + "=" + value + " ";
    EXPECT_EQ(KeysOf(item), keys);
}

TEST(MAttribute, SaysWhatIsMissing)
{
    MAttribute item;
    EXPECT_EQ(ErrorOf([&] { item.GetCachedAttribute(); }),
              "There is no attribute in the cache. Previous call to HasAttribute probably did not succeed.");
    EXPECT_EQ(ErrorOf([&] { item.GetCachedSubItem(); }),
              "There is no subitem in the cache. Previous call to HasSubItem probably did not succeed.");
    EXPECT_EQ(ErrorOf([&] { item.RequireAttribute("Freq"); }), "Could not find required attribute (Freq).");
    EXPECT_EQ(ErrorOf([&] { item.RequireSubItem("Band"); }), "Could not find required subitem (Band).");
    EXPECT_EQ(ErrorOf([&] { item.NextItem(); }), "XML item iterator has not been initialized.");

    item.SetAttribute("Freq", "440");
    EXPECT_TRUE(item.HasAttribute("freq"));
    item.SetAttribute("Alpha", "1");   // moves the pair, not the cache
    EXPECT_EQ(item.GetCachedAttribute().ToUTF8(), "440");
    item.RemoveAttribute("Freq");
    EXPECT_NE(ErrorOf([&] { item.GetCachedAttribute(); }), "");
    EXPECT_FALSE(item.HasAttribute("q"));
    EXPECT_NE(ErrorOf([&] { item.GetCachedAttribute(); }), "");
}

TEST(MAttribute, LinksItsChildren)
{
    MAttribute root("root");
    MAttribute& first = root.GetSubItem("Band");
    MAttribute& second = root.AddSubItem("band");
    MAttribute& third = root.GetSubItem("Other");
    EXPECT_EQ(&root.GetSubItem("BAND"), &first);
    EXPECT_EQ(first.Next(), &second);
    EXPECT_EQ(third.Previous(), &second);
    EXPECT_EQ(third.Next(), nullptr);
    EXPECT_EQ(third.Parent(), &root);
    EXPECT_EQ(third.GetSubItem("deep").Depth(), 2);
    second.SetAttribute("id", "2");
    EXPECT_EQ(root.FindSubItem("Band", "ID", "2"), &second);
    EXPECT_EQ(root.FindSubItem("Band", "ID", "3"), nullptr);
    EXPECT_EQ(root.FindSubItem("Other", "ID", "2"), nullptr);
    EXPECT_TRUE(root.HasSubItem("other"));
    EXPECT_EQ(&root.GetCachedSubItem(), &third);
    root.AddSubItem("last");
    root.RemoveSubItems("BAND");
    EXPECT_EQ(root.SubItemCount(), 2);
    EXPECT_EQ(third.Previous(), nullptr);
    root.RemoveSubItems("LAST");
    EXPECT_EQ(third.Next(), nullptr);
}

TEST(MAttribute, CopiesEverythingButTheName)
{
    MAttribute source("source");
    source.SetText("text");
    source.SetAttribute("a", "1");
    source.GetSubItem("x").GetSubItem("y").SetAttribute("b", "2");
    MAttribute target("target");
    target.SetAttribute("old", "1");
    MAttribute& inner = target.GetSubItem("inner");
    inner.CopyFrom(source);
    EXPECT_EQ(inner.Name().ToUTF8(), "inner");
    EXPECT_EQ(inner.Text().ToUTF8(), "text");
    EXPECT_EQ(inner.RequireSubItem("x").RequireSubItem("y").Depth(), 3);
    EXPECT_EQ(inner.RequireSubItem("x").Parent(), &inner);

    target.CopyFrom(inner);   // from a child that goes away with the copying
    EXPECT_EQ(KeysOf(target), "a=1 ");
    EXPECT_EQ(target.SubItemCount(), 1);
    EXPECT_EQ(target.RequireSubItem("x").RequireSubItem("y").GetAttribute("b").ToUTF8(), "2");
    EXPECT_EQ(target.RequireSubItem("x").RequireSubItem("y").Depth(), 2);
    target.CopyFrom(target);
    EXPECT_EQ(target.Text().ToUTF8(), "text");
}

TEST(MAttribute, WalksItsDescendantsInDocumentOrder)
{
    MAttribute root("r");
    MAttribute& a = root.AddSubItem("a");
    a.AddSubItem("b").AddSubItem("c");
    a.AddSubItem("d");
    MAttribute& e = root.AddSubItem("e");
    e.SetAttribute("k", "v");
    const auto walk = [&root](MAttribute& start)
    {
        std::string names;
        root.BeginIteration(start);
        while (const MAttribute* item = root.NextItem())
            names += item->Name().ToUTF8();
        EXPECT_EQ(root.CurrentItem(), nullptr);
        EXPECT_EQ(root.NextItem(), nullptr);
        return names;
    };
    EXPECT_EQ(walk(root), "abcde");
    EXPECT_EQ(walk(a), "bcd");
    EXPECT_EQ(walk(e), "");
}

TEST(MAttribute, KeepsBinaryDataAsHexadecimalText)
{
    const std::string bytes("\x00\x0A\xFF", 3);
    MAttribute item;
    item.SetBinary(bytes.data(), 3, false);
    EXPECT_EQ(item.Text().ToUTF8(), "000AFF");
    char buffer[8] = {};
    EXPECT_EQ(item.GetBinary(buffer, 8, false), 3);
    EXPECT_EQ(std::string(buffer, 3), bytes);
    EXPECT_EQ(item.GetBinary(buffer, 2, false), 2);
    item.SetText("000aff");
    EXPECT_EQ(item.GetBinary(buffer, 8, false), 3);

    const std::string large(5000, 'z');
    MMemoryStream source = MMemoryStream::Borrow(large.data(), 5000);
    source.Seek(0, MStream::End);
    item.SetBinary(source, true);
    EXPECT_EQ(item.Text().ToUTF8().substr(0, 4), "78DA");   // a zlib stream of the best level
    EXPECT_LT(item.Text().Length(), 200);
    std::string back(5000, '\0');
    EXPECT_EQ(item.GetBinary(back.data(), 5000, true), 5000);
    EXPECT_EQ(back, large);
    for (const int wrongSize : { 4999, 5001 })
        EXPECT_NE(ErrorOf([&] { item.GetBinary(std::string(5001, '\0').data(), wrongSize, true); }), "");
    EXPECT_EQ(ErrorOf([&] { item.GetBinary(back.data(), 4999, true); }),
              "Value doesn't have correct format.");

    MMemoryStream target;
    target.Write("head", 4);
    item.GetBinary(target, true);
    EXPECT_EQ(target.GetPosition(), 4);
    EXPECT_EQ(target.GetSize(), 5004);

    for (const char* text : { "0G", "000", "0A 0" })
    {
        item.SetText(text);
        EXPECT_EQ(ErrorOf([&] { item.GetBinary(buffer, 8, false); }),
                  "Invalid character to be converted to a number.");
        EXPECT_EQ(ErrorOf([&] { item.GetBinary(target, false); }),
                  "Invalid character to be converted to a number.");
    }
}

// A few bytes that stand for hundreds of megabytes come from a damaged or a hostile file.
TEST(MAttribute, InflatesNoMoreThanAnythingStoredIsLong)
{
    MMemoryStream bomb;
    MZLibStream stream(&bomb, MZLibStream::Direction::Compress, 100);
    const std::string zeros(1 << 20, '\0');
    for (int part = 0; part < 80; ++part)
        stream.Write(zeros.data(), 1 << 20);
    stream.Finish();
    MAttribute item;
    item.SetBinary(bomb, false);
    MMemoryStream target;
    EXPECT_THROW(item.GetBinary(target, true), MException);
}
}   // namespace
