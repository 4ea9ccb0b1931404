#include "desktop/foundation/PropertyList.hpp"

#include "tests/support/TestDesktop.hpp"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace desktop {
namespace {

using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;
using Data = PropertyList::Data;
using Date = PropertyList::Date;

Data countingBytes(int count) {
  Data data(count);
  for (int i = 0; i < count; ++i)
    data[i] = static_cast<std::byte>(i);
  return data;
}

Array multiplesOf50(int count) {
  Array numbers(count);
  for (int i = 0; i < count; ++i)
    numbers[i] = 50 * i;
  return numbers;
}

/// One of everything, with sizes on both sides of where the binary form's headers grow.
PropertyList sample() {
  return Dictionary{
      {u"array", Array()},
      {u"big", std::numeric_limits<std::int64_t>::max()},
      {u"bytes", countingBytes(60)},
      {u"date", Date{730943998}},
      {u"dict", Dictionary()},
      {u"empty", u""},
      {u"many", multiplesOf50(20)},
      {u"min", std::numeric_limits<std::int64_t>::min()},
      {u"neg", -1},
      {u"no", false},
      {u"real", 0.5},
      {u"text", u"a<b>&\"c\n\t"},
      {u"wide", u"\u00e9\u20ac\U0001F600"},
      {u"yes", true},
  };
}

/// A binary property list of objects given as bytes, with tables of one-byte numbers. The first object is outermost.
std::string binary(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string table;
  for (const auto& object : objects) {
    table.push_back(static_cast<char>(bytes.size()));
    bytes += object;
  }
  const auto tableAt = static_cast<char>(bytes.size());
  return bytes + table + std::string(6, '\0') + "\1\1" + std::string(7, '\0') + static_cast<char>(objects.size()) +
         std::string(15, '\0') + tableAt;
}

PropertyList read(const std::string& bytes) {
  auto reading = parsePropertyList(bytes);
  EXPECT_TRUE(reading) << reading.error;
  return std::move(reading.value);
}

std::string errorOf(const std::string& bytes) {
  return parsePropertyList(bytes).error;
}

// Odd texts, reals and dates, a fuzz target's corpus carries through both forms.
TEST(PropertyList, BothFormsCarryEverythingThere) {
  const auto value = sample();
  EXPECT_EQ(read(writeXml(value)), value);
  EXPECT_EQ(read(writeBinary(value)), value);
  for (const int count : {14, 15, 255, 256}) {
    const PropertyList edge = Array{countingBytes(count), multiplesOf50(count), std::u16string(count, u'x')};
    EXPECT_EQ(read(writeBinary(edge)), edge);
    EXPECT_EQ(read(writeXml(edge)), edge);
  }
  // Enough objects and bytes that references and offsets need more than one and two bytes.
  const PropertyList large = Array{multiplesOf50(70000), std::u16string(70000, u'x')};
  EXPECT_EQ(read(writeBinary(large)), large);
}

TEST(PropertyList, AreWrittenAsOthersReadThem) {
  EXPECT_NE(writeXml(u"\r").find("<string>&#13;</string>"), std::string::npos) << "others read a bare one as \\n";
  EXPECT_NE(writeXml(Date{-0.5}).find("<date>2000-12-31T23:59:59Z</date>"), std::string::npos);
  for (const double seconds : {1e300, -1e300, std::nan(""), 252423993600.0})
    EXPECT_FALSE(canBeXml(Date{seconds})) << seconds;
  for (const double seconds : {252423993599.0, -63113904000.0})
    EXPECT_TRUE(canBeXml(Date{seconds})) << seconds;
  for (const int unit : {0, 0x1, 0x1F, 0xD800, 0xDC00, 0xFFFE, 0xFFFF})
    EXPECT_FALSE(canBeXml(Dictionary{{std::u16string(1, static_cast<char16_t>(unit)), true}})) << std::hex << unit;
  EXPECT_TRUE(canBeXml(Array{u"\t\r\n\u0085\uFFFD\uE000\U0010FFFF"}));
}

TEST(PropertyList, XmlOfOtherWriters) {
  EXPECT_EQ(read("\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?>\r\n<!-- a > b -->\n"
                 "<!DOCTYPE plist [ <!ENTITY x \"]>\"> ]>\n<plist version=\"1.0\">\n<array ><string/><true></true >\n"
                 "<!-- <false/> --><data/><dict/><integer>\n -0x1F </integer><real> 1e3 </real>\n"
                 "<string> a\r\n<![CDATA[<&>]]]>&lt;&#65;&#x1F600;&quot; </string>"
                 "<data>\n\tAQ\n\tI= </data><dict><key>k</key><false/><key>k</key><true/></dict></array></plist>\n\n"),
            PropertyList(Array{u"", true, Data(), Dictionary(), -31, 1000.0, u" a\r\n<&>]<A\U0001F600\" ",
                               Data{std::byte{1}, std::byte{2}}, Dictionary{{u"k", true}}}));
  EXPECT_EQ(read("<string>no plist around it</string>"), PropertyList(u"no plist around it"));
}

TEST(PropertyList, DeepNestingIsRefused) {
  PropertyList value = Array();
  for (std::size_t depth = 1; depth < maxPropertyListNesting; ++depth)
    value = Array{std::move(value)};
  EXPECT_EQ(read(writeXml(value)), value);
  EXPECT_EQ(read(writeBinary(value)), value);
  const PropertyList deeper = Array{value};
  EXPECT_NE(errorOf(writeXml(deeper)), "");
  EXPECT_NE(errorOf(writeBinary(deeper)), "");
}

TEST(PropertyList, FaultyBinaryNamesTheOffset) {
  EXPECT_EQ(errorOf(binary({"\xA1\1", "\x5F\x10\x7F"})),
            "offset 10: an object that reaches beyond the end of the objects");
  EXPECT_NE(errorOf(binary({"\xA2\1\1", std::string("\xA1\0", 2)})).find("within themselves"), std::string::npos);
  const std::string huge = "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF";
  for (const auto& object :
       {"\x4F\x13" + huge, "\x5F\x13" + huge, "\x6F\x13" + huge, "\xAF\x13" + huge, "\xDF\x13" + huge,
        "\x6F\x13\x80" + std::string(7, '\0'), "\xDF\x13\x80" + std::string(7, '\0'), std::string("\x4F\x14") + huge,
        std::string("\xA1\7"), std::string(1, '\0'), std::string("\x21\1\1"), std::string("\x15"),
        std::string("\x51\x80"), std::string("\x14\0\0\0\0\0\0\0\0", 9) + huge, std::string("\xF0"),
        std::string("\xC0"), "\x87" + huge}) {
    EXPECT_EQ(errorOf(binary({object})).substr(0, 9), "offset 8:") << testing::PrintToString(object);
  }
  EXPECT_NE(errorOf(binary({"\xD1\1\1", "\x08"})).find("key"), std::string::npos);
  EXPECT_NE(errorOf(binary({})), "");

  EXPECT_EQ(read(binary({"\x14" + huge + huge})), PropertyList(-1));
  EXPECT_EQ(read(binary({"\x12\xFF\xFF\xFF\xFF"})), PropertyList(0xFFFFFFFF)) << "short integers have no sign";
  EXPECT_EQ(read(binary({std::string("\x22\x3F\x80\0\0", 5)})), PropertyList(1.0));
}

TEST(PropertyList, SharedObjectsDoNotUnfoldWithoutEnd) {
  std::vector<std::string> doubling;
  for (int i = 1; i < 60; ++i)
    doubling.push_back({'\xA2', static_cast<char>(i), static_cast<char>(i)});
  doubling.emplace_back("\xA0");
  EXPECT_NE(errorOf(binary(doubling)).find("too many times"), std::string::npos);
  EXPECT_EQ(read(binary({"\xA2\1\1", "\x51x"})), PropertyList(Array{u"x", u"x"}));
}

TEST(PropertyList, TruncatedFilesAreFaults) {
  auto asXml = writeXml(sample());
  asXml.pop_back(); // the line break behind the last bracket
  for (const auto& whole : {asXml, writeBinary(sample())}) {
    for (std::size_t size = 0; size < whole.size(); ++size)
      EXPECT_NE(errorOf(whole.substr(0, size)), "") << size;
  }
}

TEST(PropertyList, AnIndependentReaderAgrees) {
  if (std::system("python3 -c 'import plistlib' 2>/dev/null") != 0) GTEST_SKIP() << "there is no python3";
  const TemporaryFolder own;
  const auto& folder = own.path;
  const auto value = sample();
  writeFile(folder / "value.xml", writeXml(value));
  writeFile(folder / "value.bin", writeBinary(value));
  writeFile(folder / "compare.py", R"(
import os, plistlib
os.chdir(os.path.dirname(__file__))
with open('value.xml', 'rb') as xml, open('value.bin', 'rb') as binary:
    value = plistlib.load(xml)
    assert value == plistlib.load(binary) and value['date'].isoformat() == '2024-02-29T23:59:58'
for name, form in ('theirs.xml', plistlib.FMT_XML), ('theirs.bin', plistlib.FMT_BINARY):
    with open(name, 'wb') as file:
        plistlib.dump(value, file, fmt=form)
)");
  EXPECT_EQ(std::system(("python3 '" + (folder / "compare.py").string() + "'").c_str()), 0);
  EXPECT_EQ(contentsOf(folder / "theirs.xml"), writeXml(value));
  EXPECT_EQ(read(contentsOf(folder / "theirs.bin")), value);
}

} // namespace
} // namespace desktop
