// Property lists in both forms, and those that are made to do harm.
#include "engine/settings/PropertyList.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::string xml(const std::string& inside) {
    return "<plist version=\"1.0\">" + inside + "</plist>";
}

std::string bigEndian(std::uint64_t number, int width) {
    std::string out;
    for (int i = width - 1; i >= 0; --i) out += static_cast<char>(number >> (8 * i) & 0xFFU);
    return out;
}

/// A binary list of these objects, the first of them outermost; references have two bytes.
std::string binary(const Strings& objects) {
    std::string out = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += bigEndian(out.size(), 4);
        out += object;
    }
    const std::uint64_t start = out.size();
    return out + table + std::string(6, 0) + "\x04\x02" + bigEndian(objects.size(), 8) +
           bigEndian(0, 8) + bigEndian(start, 8);
}

TEST(PropertyList, ValuesOfBothForms) {
    const std::string text = xml(
        "<dict><key>s</key><string>a &amp; "
        "b</string><key>n</key><integer>-5</integer><key>t</key><true/>"
        "<key>r</key><real>2.9</real><key>v</key><string> 12x</string><key>d</key><dict/></dict>");
    const std::string packed = binary({std::string("\xD2\0\1\0\2\0\3\0\4", 9), "\x51s", "\x51n",
                                       std::string("\x55") + "a & b",
                                       "\x13" + bigEndian(static_cast<std::uint64_t>(-5), 8)});
    for (const std::string& bytes : {text, packed}) {
        const auto list = PropertyList::parse(bytes);
        ASSERT_TRUE(list);
        EXPECT_EQ(list->stringForKey("s"), "a & b");
        EXPECT_EQ(list->integerForKey("n"), -5);
        EXPECT_FALSE(list->stringForKey("n") || list->stringForKey("none") ||
                     list->integerForKey("none"));
    }
    auto list = PropertyList::parse(text);
    EXPECT_EQ(list->keys(), (Strings{"s", "n", "t", "r", "v", "d"}));
    EXPECT_EQ(list->integerForKey("t").value_or(-1) * 100 + list->integerForKey("r").value_or(-1),
              102);
    EXPECT_EQ(list->integerForKey("v"), 12);
    EXPECT_FALSE(list->integerForKey("d"));
    list->removeObjectForKey("s");
    list->removeObjectForKey("none");
    list->setString("<new>", "v");
    const auto again = PropertyList::parse(list->toXml());
    ASSERT_TRUE(again);
    EXPECT_EQ(again->count(), 5U);
    EXPECT_EQ(again->stringForKey("v"), "<new>");
}

TEST(PropertyList, GarbageAndHarm) {
    // Each level names the next one twice: 2^40 objects out of some 300 bytes.
    Strings doubling{std::string("\xD1\0\1\0\2", 5), "\x51k"};
    for (std::uint64_t level = 2; level < 42; ++level)
        doubling.push_back("\xA2" + bigEndian(level + 1, 2) + bigEndian(level + 1, 2));
    doubling.emplace_back("\x51z");
    // One long text named 30,000 times.
    Strings copies{std::string("\xD1\0\1\0\2", 5), "\x51k", "\xAF\x11" + bigEndian(30'000, 2),
                   "\x5F\x12" + bigEndian(400'000, 4) + std::string(400'000, 'x')};
    for (int i = 0; i < 30'000; ++i) copies[2] += bigEndian(3, 2);
    // The same with a last key that names nothing, behind which a reader may stop counting and the
    // parser goes on.
    Strings strayKey{"\xDF\x11" + bigEndian(30'000, 2), "\x51k", copies[3]};
    for (int i = 0; i < 60'000; ++i)
        strayKey[0] += bigEndian(i < 29'999 ? 1 : i == 29'999 ? 0xFFFF : 2, 2);
    std::string nested;
    for (int i = 0; i < 70'000; ++i) nested += "<array>";
    const std::string deep = xml("<dict><key>a</key>" + nested);
    Strings loop{std::string("\xD1\0\1\0\0", 5), "\x51k"};
    for (const std::string& bytes :
         {std::string(), std::string("x"), std::string("bplist00"), std::string(100, '\xFF'),
          xml("<array/>"), xml("<dict><key>a</key>"), "bplist00" + std::string(40, '\xFF'),
          binary(doubling), binary(copies), binary(strayKey), binary(loop), deep,
          xml("<dict/>") + std::string(kPropertyListLimit, ' ')}) {
        const auto start = Clock::now();
        EXPECT_FALSE(PropertyList::parse(bytes)) << bytes.substr(0, 40);
        EXPECT_LT(Clock::now() - start, 5s) << bytes.substr(0, 40);
    }
}

TEST(PropertyList, FilesOfAnyKind) {
    TestTree tree;
    ASSERT_TRUE(tree.write("good", xml("<dict/>")) && tree.write("bad", "x") && tree.fifo("fifo") &&
                tree.folder("folder"));
    EXPECT_TRUE(PropertyList::read(tree.at("good")));
    for (const char* name : {"bad", "fifo", "folder", "none"}) {
        const auto list = PropertyList::read(tree.at(name));
        ASSERT_FALSE(list) << name;
        EXPECT_EQ(list.error().path, tree.at(name));
    }
}

}  // namespace
}  // namespace orrinvale
