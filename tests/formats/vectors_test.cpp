#include "soak/card_samples.h"
#include "tests/support.h"
#include <vardel/facade/card.h>
#include <vardel/format/descriptor_members.h>
#include <vardel/formats/card_formats.h>

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace vardel {
namespace {

/// Puts a descriptor's value, if there is a text for it, and gets it.
template <auto kMember>
std::string Access(CCardFormatInfo& format, const std::string* put) {
  auto& value = format.*kMember;
  if constexpr (requires { value = *put; }) {
    if (put) value = *put;
  } else if (put) {
    std::istringstream(*put) >> value;
  }
  return ValueText(value);
}
#define FIELD(number, name, type) {#name, Access<&CCardFormatInfo::name>},
#define READONLY(number, name, type) \
  {#name, [](CCardFormatInfo& format, const std::string*) { return ValueText(format.name()); }},
#define PUT FIELD
#define GET(number, name, type)
#define ACCESSOR(number, name, type)
#define INIT(number, name)
#define VALIDATOR INIT
#define ENCODER INIT
#define DECODER INIT
const std::map<std::string, std::string (*)(CCardFormatInfo&, const std::string*)> kMembers = {
    DESCRIPTOR_MEMBERS()};

void PutChanges(CCardFormatInfo& format, const Vector& row) {
  for (const auto& [name, value] : row.changes) kMembers.at(name)(format, &value);
}

std::string Answer(CCardFormatInfo& format, const Vector& row) {
  return AnswerOf([&] {
    if (row.operation == "encode") {
      const CardDataStruct record = format.MakeCardData(row.card);
      return RecordAnswer(record.Bytes, format.ErrNumber(), format.ErrName());
    }
    if (row.operation == "decode") {
      return CardAnswer(format.AnalyzeCardData(TestFrame(row.frame)).value());
    }
    if (row.operation == "IsFacilityValid") return ValueText(format.IsFacilityValid(row.text));
    if (row.operation == "IsCardIDValid") return ValueText(format.IsCardIDValid(row.text));
    EXPECT_EQ(row.operation, "IsRevisionValid");
    return ValueText(dynamic_cast<RevisionValidator&>(format).IsRevisionValid(row.text));
  });
}

std::string FacadeAnswer(CCard& facade, const Vector& row, std::int32_t type,
                         std::int32_t subType) {
  return AnswerOf([&] {
    if (row.operation == "decode") {
      return CardAnswer(facade.AnalyzeCardData(TestFrame(row.frame, type, subType)));
    }
    const CCardByteData raw = facade.MakeCardData(row.card);
    EXPECT_EQ(TypeCode(raw.CardType(), raw.CardSubType()), TypeCode(type, subType));
    return RecordAnswer(raw.CardDataStruct.Bytes, raw.ErrNumber(), raw.ErrName());
  });
}

class VectorsTest : public testing::TestWithParam<CardFormatClass> {};

TEST_P(VectorsTest, Hold) {
  const auto& [className, type, subType, isInFacade, isConverted, create] = GetParam();
  int count = 0;
  for (const Vector& row : Vectors()) {
    if (row.className != className) continue;
    ++count;
    SCOPED_TRACE(row.where);
    const auto format = create();
    PutChanges(*format, row);
    EXPECT_EQ(Answer(*format, row), row.answer);

    // Whatever happens, an earlier error stays unless an encode records another; that of DongSeo
    // alone clears it first.
    format->MakeErr(5, "earlier");
    Answer(*format, row);
    const bool isEncode = row.operation == "encode";
    const bool isCleared = isEncode && className == "CCardFormatDongSeo";
    const bool isRecorded = isEncode && row.card.ErrNumber != 0;
    EXPECT_EQ(ErrorOf(*format), isRecorded ? ErrorOf(row.card) : isCleared ? "0 " : "5 earlier");

    CCard facade;
    EXPECT_EQ(facade.IsCardType(type, subType), isConverted);
    EXPECT_EQ(facade.IsExisted(type, subType), isInFacade);
    const bool isOwn = row.card.CardType == type && row.card.CardSubType == subType;
    const bool isConversion = row.operation == "decode" || (isEncode && isOwn);
    if (!isConversion || !isConverted) continue;
    PutChanges(*facade.CardFormat(type, subType), row);
    EXPECT_EQ(FacadeAnswer(facade, row, type, subType), row.answer) << "through the facade";
    EXPECT_EQ(ErrorOf(facade), "0 ");
  }
  EXPECT_GT(count, 0) << "vectors.csv has no row of it";
}

INSTANTIATE_TEST_SUITE_P(Of, VectorsTest, testing::ValuesIn(CardFormatClasses()),
                         [](const auto& test) { return std::string(test.param.ClassName); });

TEST(RoundTripTest, EveryCardOfEveryEncodingFormatLiesOnItsRulersAndComesBack) {
  for (const CardFormatClass& row : CardFormatClasses()) {
    const std::string_view name = row.ClassName.substr(11);
    if (name == "Binary26") continue;
    SCOPED_TRACE(name);
    Random random(20260101);
    const auto format = row.Create();
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(Mismatch(*format, DrawCard(name, random)), "");
  }
}

TEST(DescriptorsTest, HoldInNewObjects) {
  std::map<std::string, std::shared_ptr<CCardFormatInfo>> objects;
  objects["CCardFormatInfo"] = std::make_shared<CCardFormatInfo>();
  for (const CardFormatClass& row : CardFormatClasses()) {
    const auto format = objects[std::string(row.ClassName)] = row.Create();
    EXPECT_EQ(TextOf(row.CardType, row.CardSubType), TextOf(format->CardType, format->CardSubType));
  }
  for (const auto& [where, className, values] : Descriptors()) {
    EXPECT_EQ(values.size(), kMembers.size()) << "a column for each";
    for (const auto& [name, value] : values) {
      EXPECT_EQ(kMembers.at(name)(*objects.at(className), nullptr), value) << where << " " << name;
    }
    objects.erase(className);
  }
  EXPECT_TRUE(objects.empty()) << objects.begin()->first << " has no row in descriptors.csv";
  const CCardFormatHIDCorp1000 corporate;
  EXPECT_EQ(TextOf(corporate.Sidx2ndCardID(), corporate.Eidx2ndCardID()), "3 4");
}

std::string Replaced(const std::string& text, const char* pattern, const char* by) {
  return std::regex_replace(text, std::regex(pattern), by);
}

TEST(FormatDocument, ShowsRowsOfTheVectors) {
  // The cells of an example stand in this order; empty ones do not count, and neither does the
  // type.
  const auto key = [](const std::string& row) { return Replaced(row, ",+", ","); };
  std::set<std::string> rows;
  std::ifstream vectors(VARDEL_TESTS "/vectors.csv");
  for (std::string line; std::getline(vectors, line);) {
    const char* order = line.starts_with("d") ? "$1,$6,$3,$4,$5,$7," : "$1,$3,$4,$5,$6,$7,";
    rows.insert(key(Replaced(line, "(.*?,.*?,.*?),(.*?),(.*?),(.*?),(.*?),(.*?),(.*)", order)));
  }

  std::ifstream document(VARDEL_TESTS "/../docs/formats.md");
  std::string format, header;
  int count = 0;
  for (std::string line; std::getline(document, line);) {
    if (line.starts_with("`CCardFormat")) format = Replaced(line, "`CCardFormat(.*?)`.*", "$1");
    if (header.empty() || !line.starts_with("|")) header = line.starts_with("|") ? line : "";
    const bool isEncode = header.ends_with("| record |");
    const bool isExample = isEncode || header.find("| read |") != header.npos;
    if (!isExample || line == header || line.starts_with("|-")) continue;
    std::string row = Replaced(line, "[`\"]|error ", "");
    if (isEncode) row = Replaced(row, "( 00)+ \\|$", " |");  // not shown in the vectors
    row = Replaced(row, "\\b([0-9A-F]{2}) (?=[0-9A-F]{2}\\b)", "$1");
    row = Replaced(Replaced(Replaced(row, " = ", "="), " *[|,] *", ","), "·", " ");
    row = (isEncode ? "encode," : "decode,") + (header.starts_with("| format") ? "" : format) + row;
    EXPECT_TRUE(rows.contains(key(row))) << line << "\nis no row of vectors.csv: " << key(row);
    ++count;
  }
  EXPECT_GT(count, 40) << "the tables are not found";
}

TEST(FormatsTest, StandInAllListsOfThem) {
  for (const auto& [name, type, subType, isInFacade, isConverted, create] : CardFormatClasses()) {
    const std::string shortName(name.substr(11)), quoted = "`" + std::string(name) + "`";
    const std::string pair = std::to_string(type) + ", " + std::to_string(subType);
    const std::string code = std::to_string(TypeCode(type, subType)) + " | ";
    const std::pair<std::string, std::string> rows[] = {
        {"README.md", code + pair + " | " + quoted},
        {"docs/formats.md", code + "`" + shortName + "`"},
        {"docs/formats.md", quoted + ", type " + Replaced(pair, ",", ", sub-type")},
        {"examples/scripts/formats.vbs", shortName},
        {"bench/conversions.cpp", "{\"" + shortName + "\","}};
    for (const auto& [path, text] : rows) {
      std::stringstream content;
      content << std::ifstream(VARDEL_TESTS "/../" + path).rdbuf();
      EXPECT_NE(content.str().find(text), std::string::npos) << path << " lacks " << text;
    }
  }
}

}  // namespace
}  // namespace vardel
