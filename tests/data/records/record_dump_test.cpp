#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "data/records/framework_records.h"
#include "data/records/record_dump.h"
#include "data/records/table_dump_columns.h"
#include "data/records/wae_betrag.h"

namespace korvan::data {
namespace {

storage::TDbRecordHeader SampleHeader() {
  storage::TDbRecordHeader header{};
  header.RecLen = 64;
  header.RecTyp = 'C';
  header.Size = 64;
  header.Version = 3;
  header.LastModified = 45366.5;  // 15.03.2024 12:00
  header.CreationDate = 45000.0;  // 15.03.2023
  const char user[] = "\x07M\xFCller B";
  std::memcpy(header.ModifiedById, user, 9);
  return header;
}

TEST(RecordDump, HeaderShortAndLongForms) {
  const storage::TDbRecordHeader header = SampleHeader();
  EXPECT_EQ(DumpHeaderShort(header), "RecLen: 64\tRecTyp: C");
  EXPECT_EQ(DumpHeaderLong(header),
            "RecLen: 64\tRecTyp: C\tSize: 64\tVersion: 3\tLastModified: 15.03.2024 12:00:00"
            "\tCreationDate: 15.03.2023\tModifiedById: Müller ");

  storage::TDbRecordHeader damaged = header;
  damaged.RecTyp = '\0';
  damaged.ModifiedById[0] = 200;  // beyond the 22 characters
  damaged.LastModified = std::numeric_limits<double>::quiet_NaN();
  const std::string text = DumpHeaderLong(damaged);
  EXPECT_NE(text.find("RecTyp: #0\t"), std::string::npos);
  EXPECT_NE(text.find("LastModified: <ungültig"), std::string::npos);
  EXPECT_EQ(text.substr(text.find("ModifiedById: ") + 14).size(), 22u + 1u);  // ü is 2 bytes
}

TEST(RecordDump, RecordFieldByField) {
  t_Counter counter{};
  counter.Header = SampleHeader();
  counter.KzBezug = 'L';
  counter.Kennung.Set("Aufmaß");
  counter.LastId = 4711;
  EXPECT_EQ(DumpRecord(kCounterLayout, BytesOf(counter)),
            DumpHeaderLong(counter.Header) + "\nKzBezug: L\nKennung: Aufmaß\nLastId: 4711\n");

  // A record cut short on disk: the missing fields say so, nothing is read past the end.
  const std::vector<uint8_t> short_record(BytesOf(counter).begin(), BytesOf(counter).begin() + 58);
  EXPECT_EQ(DumpRecord(kCounterLayout, short_record),
            DumpHeaderLong(counter.Header) + "\nKzBezug: L\nKennung: <fehlt>\nLastId: <fehlt>\n");
  // Shorter than the header: the header fields are listed one by one.
  const std::vector<uint8_t> tiny(BytesOf(counter).begin(), BytesOf(counter).begin() + 6);
  EXPECT_EQ(DumpRecord(kCounterLayout, tiny)
                .rfind("Header.RecLen: 64\nHeader.RecTyp: C\nHeader.Size: <fehlt>\n", 0),
            0u);
}

TEST(RecordDump, FieldTextsOfEveryKind) {
  static constexpr std::string_view kStates[] = {"Incomplete", "Blanko"};
  static constexpr FieldDescriptor kFields[] = {
      {"Aktiv", 0, 1, FieldType::kBool},
      {"Druck", 1, 1, FieldType::kTriState},
      {"Status", 2, 1, FieldType::kSet8, nullptr, kStates},
      {"Datum", 3, 4, FieldType::kIntDate},
      {"Preis", 7, 10, FieldType::kWaeBetrag},
      {"Anteile", 17, 20, FieldType::kWaeBetragArray},
      {"Formel", 37, 6, FieldType::kCharArray},
      {"SizePadding", 43, 5, FieldType::kBytes},
  };
  static constexpr RecordLayout kLayout{"sample", 48, kFields};
  static_assert(DescribesLayoutExactly(kLayout));
  uint8_t bytes[48] = {1, 128, 0x03};
  const int32_t date = 20240315;
  const t_WaeBetrag amounts[3] = {{12.5, -1}, {1.25, 3}, {0.0, -1}};
  std::memcpy(bytes + 3, &date, 4);
  std::memcpy(bytes + 7, amounts, 30);
  std::memcpy(bytes + 37, "a*b\0zz", 6);
  const auto texts = [&] {
    std::string all;
    for (const FieldDescriptor& field : kFields) all += FieldText(field, bytes) + "|";
    return all;
  };
  EXPECT_EQ(texts(),
            "True|Default|<Incomplete, Blanko>|20240315 (15.03.2024)|12.5 [-1]|"
            "(1.25 [3]; 0 [-1])|a*b|(5 Bytes 0)|");
  bytes[0] = 7;
  bytes[2] = 0x02;
  std::memcpy(bytes + 3, "\x63\x0F\x35\x01", 4);  // 20254563: month 45
  EXPECT_EQ(
      texts(),
      "#7|Default|<Blanko>|20254563 (ungültig)|12.5 [-1]|(1.25 [3]; 0 [-1])|a*b|(5 Bytes 0)|");
}

TEST(RecordDump, TableLinesWithColumnFormats) {
  // A structure record as the structure table lays it out.
  static constexpr FieldDescriptor kStruktur[] = {
      HeaderField(),
      {"IdLv", 48, 4, FieldType::kInt32},
      {"SzLv", 52, 2, FieldType::kInt16},
      {"ZuBg", 54, 4, FieldType::kInt32},
      {"SzBg", 58, 2, FieldType::kInt16},
      {"ZuPos", 60, 4, FieldType::kInt32},
      {"SzPos", 64, 2, FieldType::kInt16},
      {"IdBgBeschr", 66, 4, FieldType::kInt32},
      {"KzBgBeschr", 70, 1, FieldType::kChar},
      {"Rest", 71, 6, FieldType::kBytes},
  };
  static constexpr RecordLayout kLayout{"t_Struktur", 77, kStruktur};
  static_assert(DescribesLayoutExactly(kLayout));
  static_assert(ColumnsResolve(kLayout, kStrukturDumpColumns));
  static_assert(!ColumnsResolve(kLayout, kVertragDumpColumns));

  uint8_t record[77] = {};
  auto put32 = [&](int at, int32_t v) { std::memcpy(record + at, &v, 4); };
  auto put16 = [&](int at, int16_t v) { std::memcpy(record + at, &v, 2); };
  put32(48, 17), put16(52, 1), put32(54, 2147483646), put16(58, 0);
  put32(60, 2147483647), put16(64, 32767), put32(66, 5), record[70] = 'P';

  EXPECT_EQ(DumpTableHeader(kStrukturDumpColumns),
            "IdLv || SzLv || ZuBg || SzBg || ZuPos || SzPos || IdBgBeschr || KzBgBeschr");
  EXPECT_EQ(DumpTableRow(kLayout, kStrukturDumpColumns, record),
            "00000000017 || 00001 || 02147483646 || 00000 || 02147483647 || 32767 || "
            "00000000005 || P");

  // Formats of other kinds; a mismatched conversion prints the text within the width.
  static constexpr DumpColumn kColumns[] = {{"A", "IdLv", "%11d"},
                                            {"B", "KzBgBeschr", "%4s"},
                                            {"C", "SzLv", "%7.3f"},
                                            {"D", "Header.RecTyp", "%1s"},
                                            {"E", "Header.LastModified", "%d"},
                                            {"F", "Nope", "%d"},
                                            {"G", "IdLv", ""},
                                            {"H", "IdLv", "%n"}};
  storage::TDbRecordHeader header = SampleHeader();
  std::memcpy(record, &header, sizeof header);
  EXPECT_EQ(DumpTableRow(kLayout, kColumns, record),
            "         17 ||    P ||   1.000 || C || 15.03.2024 12:00:00 || "
            "<unbekanntes Feld Nope> || 17 || 17");
}

}  // namespace
}  // namespace korvan::data
