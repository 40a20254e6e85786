#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "data/framework_records.h"
#include "data/record_dump.h"
#include "data/table_dump_columns.h"
#include "data/unit_record.h"
#include "data/wae_betrag.h"

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

t_Counter SampleCounter() {
  t_Counter counter{};
  counter.Header = SampleHeader();
  counter.KzBezug = 'L';
  counter.Kennung.Set("Aufmaß");
  counter.LastId = 4711;
  return counter;
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
  const t_Counter counter = SampleCounter();
  EXPECT_EQ(DumpRecord(kCounterLayout, BytesOf(counter)), DumpHeaderLong(counter.Header) + "\n" +
                                                              "KzBezug: L\n"
                                                              "Kennung: Aufmaß\n"
                                                              "LastId: 4711\n");

  // A record cut short on disk: the missing fields say so, nothing is read past the end.
  const std::vector<uint8_t> short_record(BytesOf(counter).begin(), BytesOf(counter).begin() + 58);
  EXPECT_EQ(DumpRecord(kCounterLayout, short_record),
            DumpHeaderLong(counter.Header) + "\nKzBezug: L\nKennung: <fehlt>\nLastId: <fehlt>\n");
  // Shorter than the header: the header fields are listed one by one.
  const std::vector<uint8_t> tiny(BytesOf(counter).begin(), BytesOf(counter).begin() + 6);
  EXPECT_EQ(DumpRecord(kCounterLayout, tiny)
                .rfind("Header.RecLen: 64\nHeader.RecTyp: C\n"
                       "Header.Size: <fehlt>\n",
                       0),
            0u);
}

TEST(RecordDump, FieldTextsOfEveryKind) {
  t_Einheit unit{};
  unit.Header = SampleHeader();
  unit.IdLang = 1;
  unit.IdEinheit = -3;
  unit.Bezeichnung.Set("Quadratmeter");
  unit.Einheit.Set("m²");
  unit.Preisanteile = 'B';
  unit.Nachkommastellen = 3;
  unit.ValFormat = static_cast<uint8_t>(TValFormat::vfFtIn10);
  const std::string dump = DumpRecord(kEinheitLayout, BytesOf(unit));
  EXPECT_NE(dump.find("\nIdEinheit: -3\n"), std::string::npos);
  EXPECT_NE(dump.find("\nEinheit: m²\n"), std::string::npos);
  EXPECT_NE(dump.find("\nValFormat: vfFtIn10\n"), std::string::npos);
  EXPECT_NE(dump.find("\nFN003: \n"), std::string::npos);

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
  uint8_t bytes[48] = {};
  bytes[0] = 1;
  bytes[1] = 128;
  bytes[2] = 0x03;
  const int32_t date = 20240315;
  std::memcpy(bytes + 3, &date, 4);
  const t_WaeBetrag price{12.5, -1};
  std::memcpy(bytes + 7, &price, 10);
  const t_WaeBetrag parts[2] = {{1.25, 3}, {0.0, -1}};
  std::memcpy(bytes + 17, parts, 20);
  std::memcpy(bytes + 37, "a*b\0zz", 6);
  auto text = [&](int i) { return FieldText(kFields[i], bytes); };
  EXPECT_EQ(text(0), "True");
  EXPECT_EQ(text(1), "Default");
  EXPECT_EQ(text(2), "<Incomplete, Blanko>");
  EXPECT_EQ(text(3), "20240315 (15.03.2024)");
  EXPECT_EQ(text(4), "12.5 [-1]");
  EXPECT_EQ(text(5), "(1.25 [3]; 0 [-1])");
  EXPECT_EQ(text(6), "a*b");
  EXPECT_EQ(text(7), "(5 Bytes 0)");
  bytes[0] = 7;
  bytes[2] = 0x02;
  std::memcpy(bytes + 3, "\x63\x0F\x35\x01", 4);  // 20254563: month 45
  EXPECT_EQ(text(0), "#7");
  EXPECT_EQ(text(2), "<Blanko>");
  EXPECT_EQ(text(3), "20254563 (ungültig)");
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

TEST(RecordDump, ColumnListsHaveTheirCaptions) {
  EXPECT_EQ(std::size(kBudgetDumpColumns), 14u);
  EXPECT_EQ(kBudgetDumpColumns[2].caption, "Budget.Betrag (netto)");
  EXPECT_EQ(std::size(kDokumentDumpColumns), 11u);
  EXPECT_EQ(std::size(kVertragDumpColumns), 17u);
  EXPECT_EQ(kRechnungDumpColumns[0].caption, "ID ");
  EXPECT_EQ(std::size(kBieterDumpColumns), 12u);
  EXPECT_EQ(std::size(kAufmassDumpColumns), 10u);
  EXPECT_EQ(kAbzugDumpColumns[3].caption, "Rechnungstyp_oder_Öffnungslimit");
  EXPECT_EQ(std::size(kAdrBezDumpColumns), 7u);
  EXPECT_EQ(kBookmarkDumpColumns[3].format, "%60s");
}

}  // namespace
}  // namespace korvan::data
