#include "desktop/foundation/PropertyList.hpp"

#include "tests/support/TestDesktop.hpp"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

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

std::string xml(const std::string& content) {
  return "<?xml version=\"1.0\"?>\n<plist>" + content + "</plist>";
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

TEST(PropertyList, RealsKeepTheirValue) {
  for (const double number : {0.1, -1e300, 5e-324, 1.7976931348623157e308, std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(), -0.0, 1e15, 123456789.125, std::nan("")}) {
    const auto bits = writeBinary(number); // which tell -0 from 0, and a NaN is the same there
    EXPECT_EQ(writeBinary(read(bits)), bits) << number;
    EXPECT_EQ(writeBinary(read(writeXml(number))), bits) << number;
  }
}

TEST(PropertyList, OddStringsSurvive) {
  const std::u16string nul(u"a\0b", 3);
  const std::u16string high(1, char16_t{0xD800});
  const std::u16string low(1, char16_t{0xDC00});
  for (const auto& text : {nul, high, low, low + high, high + u"x", std::u16string(u"\u0001"),
                           std::u16string(u"\uFFFE"), std::u16string(u"\uFFFF"), std::u16string(u"\u001f")}) {
    EXPECT_FALSE(canBeXml(Array{text}));
    EXPECT_FALSE(canBeXml(Dictionary{{text, true}}));
    EXPECT_EQ(read(writeBinary(Dictionary{{text, text}})), PropertyList(Dictionary{{text, text}}));
    EXPECT_TRUE(parsePropertyList(writeXml(text))) << "replaced, but well formed";
  }
  for (const auto* text :
       {u"  \r\n\t ", u"\r", u"]]>", u"&amp;", u"<!-- -->", u"\u0085\u2028\uFFFD\uE000", u"\U0010FFFF"}) {
    EXPECT_TRUE(canBeXml(Dictionary{{text, text}}));
    EXPECT_EQ(read(writeXml(Dictionary{{text, text}})), PropertyList(Dictionary{{text, text}}));
  }
  EXPECT_NE(writeXml(u"\r").find("<string>&#13;</string>"), std::string::npos) << "others read a bare one as \\n";
}

TEST(PropertyList, DatesOfAnySize) {
  EXPECT_NE(writeXml(Date{-0.5}).find("<date>2000-12-31T23:59:59Z</date>"), std::string::npos);
  EXPECT_EQ(read(xml("<date>2024-02-29T23:59:58Z</date>")), PropertyList(Date{730943998}));
  for (const double seconds : {1e300, -1e300, std::nan(""), std::numeric_limits<double>::infinity(), 252423993600.0}) {
    EXPECT_FALSE(canBeXml(Date{seconds}));
    EXPECT_TRUE(parsePropertyList(writeXml(Date{seconds})));
  }
  for (const double seconds : {252423993599.0, -63113904000.0}) {
    EXPECT_TRUE(canBeXml(Date{seconds}));
    EXPECT_EQ(read(writeXml(Date{seconds})), PropertyList(Date{seconds}));
  }
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

TEST(PropertyList, FaultyXmlNamesTheLine) {
  EXPECT_EQ(errorOf(xml("\n<array>\r\n<string>x</string>\r<integer>1x</integer>\n</array>")),
            "line 5: <integer> does not hold one that can be read");
  EXPECT_EQ(errorOf(""), "line 1: the text ends where an element should begin");
  EXPECT_EQ(errorOf("<plist>\n<dict>\n<string/>"), "line 3: a <key> should stand here, not <string>");
  for (const auto* content :
       {"", "<true/><true/>", "<dict><key>k</key></dict>", "<null/>", "<string>a<!-- b --></string>",
        "<string>&nbsp;</string>", "<string>&#xD800;</string>", "<string>&#x110000;</string>",
        "<string>\x82\x80</string>", "<string>\xF4\x90\x80\x80</string>", "<string>\xE2\x82</string>", "<integer/>",
        "<integer>9223372036854775808</integer>", "<real>1.0.0</real>", "<date>2023-02-29T00:00:00Z</date>",
        "<date>2023-01-01T24:00:00Z</date>", "<data>A!==</data>", "<data>AQ==AQ==</data>", "<string>&amp</string>"}) {
    EXPECT_NE(errorOf(xml(content)), "") << content;
  }
  EXPECT_NE(errorOf(xml("<true/>") + "<true/>"), "");
  EXPECT_NE(errorOf("<?xml version=\"1.0\" encoding=\"UTF-16\"?><true/>"), "");
  EXPECT_NE(errorOf("<?xml encoding="), "");
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
  std::string open;
  for (int i = 0; i < 1000000; ++i)
    open += "<array>";
  EXPECT_NE(errorOf(open), "");
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
  EXPECT_NE(errorOf("bplist15" + std::string(40, '\0')), "");

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

TEST(PropertyList, MutatedFilesAreReadOrRefused) {
  std::mt19937 random(20240229); // the same faults each time
  const auto below = [&](std::size_t limit) { return random() % limit; };
  std::size_t readable = 0;
  for (const auto& original : {writeXml(sample()), writeBinary(sample())}) {
    for (int round = 0; round < 6000; ++round) {
      auto bytes = original;
      for (auto changes = 1 + below(3); changes > 0; --changes) {
        // Half of the changes go to the end, where the tables are.
        const auto at = below(2) == 0 ? below(bytes.size()) : bytes.size() - 1 - below(64);
        bytes[at] = below(2) == 0 ? static_cast<char>(random()) : static_cast<char>(bytes[at] ^ (1 << below(8)));
      }
      const auto reading = parsePropertyList(bytes);
      if (!reading) continue;
      ++readable;
      // What was read is a sound value: it survives both forms. Compared as bytes, for a NaN is unequal to itself.
      const auto again = writeBinary(reading.value);
      EXPECT_EQ(writeBinary(read(again)), again);
      const auto text = writeXml(reading.value);
      EXPECT_TRUE(parsePropertyList(text)) << text;
      EXPECT_TRUE(!canBeXml(reading.value) || writeXml(read(text)) == text) << text;
    }
  }
  EXPECT_GT(readable, 1000U);
  EXPECT_LT(readable, 11000U);
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
